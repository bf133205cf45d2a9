#include "common/Reports.h"
#include "vrGraphics/drivercommon/vrRenderModeType.h"
#include "vrOpenGL/vrEGLSurface.h"
#include "vro/OffscreenView.h"
#include "vro/RenderOptions.h"
#include "vro/Stage.h"

#include <epoxy/gl.h>

#include <gmock/gmock.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace
{

using testing::IsEmpty;

/// What a frame asks of OpenGL. Calls go on to the device.
struct Trace
{
    static inline bool IsOn = false;
    static inline std::map<std::string, std::string> States; ///< what was set last
    static inline std::vector<std::string> Repeated;         ///< ahead of a draw
    static inline std::vector<std::string>
        Pending; ///< since the last draw; who takes the picture may set what he likes
    static inline std::vector<std::string> Queries;
    static inline std::map<std::string, int> Counts; ///< of other calls
    static inline std::string Unit, Array, Program;  ///< that the next call is about

    static void Start()
    {
        States.clear();
        Repeated.clear();
        Pending.clear();
        Queries.clear();
        Counts.clear();
        Unit = Array = Program = "unknown";
        IsOn = true;
    }
    static void Set(const std::string &state, const std::string &value)
    {
        const auto [known, isNew] = States.try_emplace(state, value);
        if (!isNew && known->second == value) Pending.push_back(state + " =" + value);
        known->second = value;
    }
    static void Count(const std::string &call)
    {
        ++Counts[call];
        Repeated.insert(Repeated.end(), Pending.begin(), Pending.end());
        Pending.clear();
    }
};

template <typename Argument>
std::string Text_Of(Argument argument)
{
    if constexpr (std::is_pointer_v<Argument>)
        return " " + std::to_string(reinterpret_cast<uintptr_t>(argument));
    else
        return " " + std::to_string(argument);
}

/// Stands before one of the pointers through which all calls go.
template <auto &POINTER>
struct Hook
{
    using Function = std::remove_reference_t<decltype(POINTER)>;
    static inline Function Original = nullptr;
    static inline void (*Note)(const std::vector<std::string> &arguments) = nullptr;

    template <typename Result, typename... Arguments>
    static Result Call(Arguments... arguments)
    {
        if (Trace::IsOn) Note({Text_Of(arguments)...});
        return Original(arguments...);
    }
    template <typename Result, typename... Arguments>
    static auto Stand_In(Result (*)(Arguments...))
    {
        return &Call<Result, Arguments...>;
    }
    static void Install(void (*note)(const std::vector<std::string> &))
    {
        Note = note;
        Original = POINTER;
        POINTER = Stand_In(Original);
    }
    static void Remove() { POINTER = Original; }
};

std::string Join(const std::vector<std::string> &arguments, size_t first)
{
    std::string text;
    for (size_t i = first; i < arguments.size(); ++i) text += arguments[i];
    return text;
}

// What each call does: its first arguments say which state it is about.
#define NOTE [](const std::vector<std::string> &a)
#define STATE(name, keys)                                                                                              \
    Hook<name>::Install(NOTE { Trace::Set(#name + Join({a.begin(), a.begin() + keys}, 0), Join(a, keys)); })
#define QUERY(name) Hook<name>::Install(NOTE { Trace::Queries.push_back(#name + Join(a, 0)); })
#define COUNT(name) Hook<name>::Install([](const std::vector<std::string> &) { Trace::Count(#name); })

#define ALL_STATES(X)                                                                                                  \
    X(glBindFramebuffer, 1)                                                                                            \
    X(glBindSampler, 1)                                                                                                \
    X(glViewport, 0)                                                                                                   \
    X(glPolygonMode, 1)                                                                                                \
    X(glCullFace, 0)                                                                                                   \
    X(glFrontFace, 0)                                                                                                  \
    X(glColorMask, 0)                                                                                                  \
    X(glBlendEquationSeparate, 0)                                                                                      \
    X(glBlendFuncSeparate, 0)                                                                                          \
    X(glDepthFunc, 0)                                                                                                  \
    X(glDepthMask, 0)                                                                                                  \
    X(glClearColor, 0)                                                                                                 \
    X(glClearDepth, 0)                                                                                                 \
    X(glClearStencil, 0)                                                                                               \
    X(glDrawBuffers, 0)                                                                                                \
    X(glReadBuffer, 0)
#define ALL_QUERIES(X)                                                                                                 \
    X(glGetIntegerv)                                                                                                   \
    X(glGetFloatv)                                                                                                     \
    X(glGetBooleanv)                                                                                                   \
    X(glIsEnabled)                                                                                                     \
    X(glGetError)                                                                                                      \
    X(glGetString)                                                                                                     \
    X(glGetStringi)                                                                                                    \
    X(glCheckFramebufferStatus)                                                                                        \
    X(glGetUniformLocation)                                                                                            \
    X(glGetActiveUniform)                                                                                              \
    X(glGetProgramiv)                                                                                                  \
    X(glGetShaderiv)                                                                                                   \
    X(glGetTexLevelParameteriv)                                                                                        \
    X(glGetFramebufferAttachmentParameteriv)                                                                           \
    X(glGetVertexAttribiv)                                                                                             \
    X(glGetBufferParameteriv)                                                                                          \
    X(glFinish)
#define ALL_COUNTS(X)                                                                                                  \
    X(glMapBufferRange)                                                                                                \
    X(glBufferData)                                                                                                    \
    X(glBufferSubData)                                                                                                 \
    X(glTexImage2D)                                                                                                    \
    X(glDrawElementsBaseVertex)                                                                                        \
    X(glDrawArrays)                                                                                                    \
    X(glClear)                                                                                                         \
    X(glBlitFramebuffer)

// Those whose state is that of what another call chose.
#define ALL_SPECIAL(X)                                                                                                 \
    X(glEnable)                                                                                                        \
    X(glDisable)                                                                                                       \
    X(glActiveTexture)                                                                                                 \
    X(glBindTexture)                                                                                                   \
    X(glUseProgram)                                                                                                    \
    X(glBindVertexArray)                                                                                               \
    X(glBindBuffer)                                                                                                    \
    X(glUniform1f)                                                                                                     \
    X(glUniform1i)                                                                                                     \
    X(glReadPixels)

void Install_Hooks()
{
#define ADD(name, keys) STATE(name, keys);
    ALL_STATES(ADD)
#undef ADD
#define ADD(name) QUERY(name);
    ALL_QUERIES(ADD)
#undef ADD
#define ADD(name) COUNT(name);
    ALL_COUNTS(ADD)
#undef ADD
    Hook<epoxy_glEnable>::Install(NOTE { Trace::Set("switch" + a[0], "on"); });
    Hook<epoxy_glDisable>::Install(NOTE { Trace::Set("switch" + a[0], "off"); });
    Hook<epoxy_glActiveTexture>::Install(NOTE { Trace::Set("unit", Trace::Unit = a[0]); });
    Hook<epoxy_glBindTexture>::Install(NOTE { Trace::Set("texture" + Trace::Unit + a[0], a[1]); });
    Hook<epoxy_glUseProgram>::Install(NOTE { Trace::Set("program", Trace::Program = a[0]); });
    Hook<epoxy_glBindVertexArray>::Install(NOTE { Trace::Set("array", Trace::Array = a[0]); });
    Hook<epoxy_glBindBuffer>::Install(
        NOTE { Trace::Set("buffer" + a[0] + (a[0] == Text_Of(GL_ELEMENT_ARRAY_BUFFER) ? Trace::Array : ""), a[1]); });
    Hook<epoxy_glUniform1f>::Install(NOTE { Trace::Set("uniform" + Trace::Program + a[0], a[1]); });
    Hook<epoxy_glUniform1i>::Install(NOTE { Trace::Set("uniform" + Trace::Program + a[0], a[1]); });
    // The frame is over: its picture is taken.
    Hook<epoxy_glReadPixels>::Install([](const std::vector<std::string> &) { Trace::IsOn = false; });
}

void Remove_Hooks()
{
    Trace::IsOn = false;
#define REMOVE(name, ...) Hook<name>::Remove();
    ALL_STATES(REMOVE)
    ALL_QUERIES(REMOVE)
    ALL_COUNTS(REMOVE)
    ALL_SPECIAL(REMOVE)
#undef REMOVE
}

/// A sample that is on the screen, with all post-effects.
void Expect_Lean_Frame(const std::string &name, int frames, const std::string &background)
{
    vro::RenderOptions options;
    options.File = std::string(SAMPLES_DIRECTORY) + "/Art/Models/" + name + ".vro";
    options.Width = 160;
    options.Height = 120;
    options.Frames = frames;
    options.BackgroundPicture = background;
    std::string error;
    const auto view = vro::OffscreenView::Open(options, SAMPLES_DIRECTORY, error);
    ASSERT_TRUE(view) << error;
    const auto stage = vro::Stage::Open(options);
    ASSERT_TRUE(stage);
    view->Furnish(stage->Get_Scene());
    std::vector<uint8_t> rgba;
    for (int frame = 1; frame <= frames; ++frame) {
        stage->Run_Frame(frame);
        // What is drawn with is made when it is first used.
        if (frame + 3 <= frames) continue;
        ASSERT_TRUE(view->Draw(stage->Get_Scene(), rgba, error)) << error;
    }
    Install_Hooks();
    Trace::Start();
    EXPECT_TRUE(view->Draw(stage->Get_Scene(), rgba, error)) << error;
    Remove_Hooks();

    EXPECT_THAT(Trace::Queries, IsEmpty()) << name;
    EXPECT_THAT(Trace::Repeated, IsEmpty()) << name;
    const int draws = Trace::Counts["epoxy_glDrawElementsBaseVertex"] + Trace::Counts["epoxy_glDrawArrays"];
    EXPECT_GT(draws, 5) << name;
    EXPECT_EQ(Trace::Counts["epoxy_glMapBufferRange"], draws) << name << ": one upload a draw";
    for (const char *upload : {"epoxy_glBufferData", "epoxy_glBufferSubData", "epoxy_glTexImage2D"})
        EXPECT_EQ(Trace::Counts[upload], 0) << name << ": " << upload;
}

} // namespace

TEST(FrameCallsGLTest, AFrameAsksNothingOfTheDeviceAndSetsNothingTwice)
{
    std::string error;
    if (!vrEGLSurface::Create(16, 16, error)) GTEST_SKIP() << "no OpenGL device off-screen: " << error;
    const MKTest::Reports reports;
    Expect_Lean_Frame("explosion", 20, "");
    Expect_Lean_Frame("heat_shimmer", 60, "backdrop.tga");
    Expect_Lean_Frame("bump_smoke", 60, "");
    Expect_Lean_Frame("hardware_sparks", 40, "");
}
