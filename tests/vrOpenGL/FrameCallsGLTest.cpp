#include "common/Reports.h"
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
using Arguments = std::vector<std::string>;

/// What a frame asks of OpenGL. Calls go on to the device.
struct Trace
{
    static inline bool IsOn = false;
    static inline std::map<std::string, std::string> States; ///< what was set last
    static inline std::vector<std::string> Repeated;         ///< ahead of a draw
    static inline std::vector<std::string> Pending; ///< since the last draw; who takes the picture may set anything
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
    static inline void (*Note)(const Arguments &arguments) = nullptr;

    template <typename Result, typename... Types>
    static Result Call(Types... arguments)
    {
        if (Trace::IsOn) Note({Text_Of(arguments)...});
        return Original(arguments...);
    }
    template <typename Result, typename... Types>
    static auto Stand_In(Result (*)(Types...))
    {
        return &Call<Result, Types...>;
    }
    /// Once more does no harm: the first call of all puts the device's own function into the pointer.
    static void Install(void (*note)(const Arguments &))
    {
        Note = note;
        if (POINTER == Stand_In(POINTER)) return;
        Original = POINTER;
        POINTER = Stand_In(POINTER);
    }
};

std::string Join(const Arguments &arguments, size_t first)
{
    std::string text;
    for (size_t i = first; i < arguments.size(); ++i) text += arguments[i];
    return text;
}

/// The name of a call's pointer, out of this function's own.
template <auto &POINTER>
std::string Name_Of()
{
    const std::string name = __PRETTY_FUNCTION__;
    const size_t first = name.find("epoxy_");
    return name.substr(first, name.find_first_of(";]", first) - first);
}

/// Calls of one kind. `NOTE` gets the name of each.
template <auto &...POINTERS>
struct Hooks
{
    template <auto NOTE>
    static void Install()
    {
        (Hook<POINTERS>::Install([](const Arguments &a) { NOTE(Name_Of<POINTERS>(), a); }), ...);
    }
};

using States =
    Hooks<epoxy_glViewport, epoxy_glCullFace, epoxy_glFrontFace, epoxy_glColorMask, epoxy_glBlendEquationSeparate,
          epoxy_glBlendFuncSeparate, epoxy_glDepthFunc, epoxy_glDepthMask, epoxy_glClearColor, epoxy_glClearDepth,
          epoxy_glClearStencil, epoxy_glDrawBuffers, epoxy_glReadBuffer>;
/// Those whose first argument says which state it is about.
using KeyedStates = Hooks<epoxy_glBindFramebuffer, epoxy_glBindSampler, epoxy_glPolygonMode>;
using Queries = Hooks<epoxy_glGetIntegerv, epoxy_glGetFloatv, epoxy_glGetBooleanv, epoxy_glIsEnabled, epoxy_glGetError,
                      epoxy_glGetString, epoxy_glGetStringi, epoxy_glCheckFramebufferStatus, epoxy_glGetUniformLocation,
                      epoxy_glGetActiveUniform, epoxy_glGetProgramiv, epoxy_glGetShaderiv,
                      epoxy_glGetTexLevelParameteriv, epoxy_glGetFramebufferAttachmentParameteriv,
                      epoxy_glGetVertexAttribiv, epoxy_glGetBufferParameteriv, epoxy_glFinish>;
using Counts = Hooks<epoxy_glMapBufferRange, epoxy_glBufferData, epoxy_glBufferSubData, epoxy_glTexImage2D,
                     epoxy_glDrawElementsBaseVertex, epoxy_glDrawArrays, epoxy_glClear, epoxy_glBlitFramebuffer>;

void Install_Hooks()
{
    using Name = const std::string &;
    using A = const Arguments &;
    States::Install<[](Name name, A a) { Trace::Set(name, Join(a, 0)); }>();
    KeyedStates::Install<[](Name name, A a) { Trace::Set(name + a[0], Join(a, 1)); }>();
    Queries::Install<[](Name name, A a) { Trace::Queries.push_back(name + Join(a, 0)); }>();
    Counts::Install<[](Name name, A) { Trace::Count(name); }>();
    Hook<epoxy_glEnable>::Install([](A a) { Trace::Set("switch" + a[0], "on"); });
    Hook<epoxy_glDisable>::Install([](A a) { Trace::Set("switch" + a[0], "off"); });
    Hook<epoxy_glActiveTexture>::Install([](A a) { Trace::Set("unit", Trace::Unit = a[0]); });
    Hook<epoxy_glBindTexture>::Install([](A a) { Trace::Set("texture" + Trace::Unit + a[0], a[1]); });
    Hook<epoxy_glUseProgram>::Install([](A a) { Trace::Set("program", Trace::Program = a[0]); });
    Hook<epoxy_glBindVertexArray>::Install([](A a) { Trace::Set("array", Trace::Array = a[0]); });
    Hook<epoxy_glBindBuffer>::Install([](A a) {
        Trace::Set("buffer" + a[0] + (a[0] == Text_Of(GL_ELEMENT_ARRAY_BUFFER) ? Trace::Array : ""), a[1]);
    });
    Hook<epoxy_glUniform1f>::Install([](A a) { Trace::Set("uniform" + Trace::Program + a[0], a[1]); });
    Hook<epoxy_glUniform1i>::Install([](A a) { Trace::Set("uniform" + Trace::Program + a[0], a[1]); });
    // The frame is over: its picture is taken.
    Hook<epoxy_glReadPixels>::Install([](A) { Trace::IsOn = false; });
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
    Trace::IsOn = false;
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
