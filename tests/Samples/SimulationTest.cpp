#include "Samples/SamplePlayer.h"

#include "common/TempFiles.h"

#include "vro/TextEncoding.h"

#include "MKLib/MKMath/FloatingPoint.h"
#include "MKLib/ThreadPool.h"
#include "vrGraphics/nulldriver/vrNullDriverMethods.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace
{

using MKTest::SamplePlayer;

const std::string RECORD = MK_SAMPLE_TESTS "/simulation.txt";
constexpr const char *RENEW = "MK_RENEW_SIMULATION";
constexpr float TIMES[] = {0.5f, 2.0f, 5.0f};

/// 64-bit FNV-1a.
class Checksum
{
public:
    void Add(const void *data, size_t size)
    {
        for (size_t index = 0; index < size; ++index)
            Value = (Value ^ static_cast<const uint8_t *>(data)[index]) * 0x100000001b3u;
    }
    uint64_t Get() const { return Value; }

private:
    uint64_t Value = 0xcbf29ce484222325u;
};

/// Over all channels of the live particles, the oldest first. "Render" isn't one: it lists what is drawn.
uint64_t Checksum_Of(const vrMKPBuffer &buffer)
{
    Checksum sum;
    for (int channel = 0; channel < static_cast<int>(MKP_ATTRIBUTE_COUNT); ++channel) {
        if (channel == MKP_RENDER) continue;
        const auto attribute = static_cast<MKPAttribTypes>(channel);
        for (const vrMKPSpan span : buffer.Live_Spans())
            for (int at = 0; at < span.Count; ++at) {
                uint8_t element[sizeof(Vector3)];
                buffer.Copy_Element(attribute, span.First + at, element);
                sum.Add(element, vrMKPBuffer::Get_Element_Size(attribute));
            }
    }
    return sum.Get();
}

/// Three significant digits, and one zero.
std::string Rounded(float value)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%.3g", static_cast<double>(value));
    return text == std::string("-0") ? "0" : text;
}

std::string Rounded(const Vector3 &value)
{
    return Rounded(value.x) + " " + Rounded(value.y) + " " + Rounded(value.z);
}

std::string Describe(const vrMKParticle &particle)
{
    const vrMKPBuffer *buffer = particle.Get_Buffer();
    if (!buffer || !buffer->Active) return "not playing";
    const vrBounds &bounds = particle.Get_Bounds();
    char sum[32];
    std::snprintf(sum, sizeof(sum), "%016" PRIx64, Checksum_Of(*buffer));
    return std::to_string(buffer->ActiveCount) + " live, center " + Rounded(bounds.Center) + ", extent " +
           Rounded(bounds.Extent) + ", " + sum;
}

/// As UTF-8, whatever the file has.
std::string Name_Of(const vrMKParticle &particle)
{
    const std::string_view name = particle.Get_Name();
    return vro::Is_Valid_Utf8(name) ? std::string(name) : vro::Windows_1252_To_Utf8(name);
}

std::string Describe(const SamplePlayer &player)
{
    std::string text;
    player.For_Layers([&](int renderable, int layer, const vrMKParticle &particle) {
        text += "  " + std::to_string(renderable) + "." + std::to_string(layer) + " " + Name_Of(particle) + ": " +
                Describe(particle) + "\n";
    });
    return text;
}

/// "Slotted UV" hands its slots out in turn, to all particles of all runs.
void Remove_Slots_In_Turn(const SamplePlayer &player)
{
    player.For_Layers([](int, int, vrMKParticle &particle) {
        for (int index = particle.Get_Modifier_Count() - 1; index >= 0; --index)
            if (particle.Get_Modifier(index)->Get_Plugin_Class() == kvrMKPSlottedUVModifier)
                particle.Remove_Modifier(index);
    });
}

/// What `simulation.txt` holds.
std::string Play_All()
{
    std::string text;
    for (const std::string &file : MKTest::Sample_Files()) {
        SamplePlayer player(file);
        float now = 0.0f;
        for (const float time : TIMES) {
            player.Run_Seconds(time - now);
            now = time;
            text += MKTest::Sample_Name(file) + " after " + Rounded(time) + " s\n" + Describe(player);
        }
    }
    return text;
}

std::vector<std::string> Lines(const std::string &text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

/// Each line that differs, with the head that it stands under.
std::string Differences(const std::vector<std::string> &expected, const std::vector<std::string> &actual)
{
    std::string text;
    std::string head;
    const std::string none = "(no line)";
    for (size_t index = 0; index < std::max(expected.size(), actual.size()); ++index) {
        const std::string &wanted = index < expected.size() ? expected[index] : none;
        const std::string &got = index < actual.size() ? actual[index] : none;
        if (got.front() != ' ') head = got;
        if (wanted != got)
            text += "line " + std::to_string(index + 1) + ", " + head + "\n  recorded" + wanted + "\n  played  " + got +
                    "\n";
    }
    return text;
}

class SampleSimulation : public testing::Test
{
protected:
    /// The table of "Color Variance" is filled by whoever is the first of the process to use it.
    static void SetUpTestSuite()
    {
        Init_Floating_Point_Mode();
        ThreadPool::System_Init(1);
        SamplePlayer(MK_SAMPLES "/Art/Models/campfire.vro").Run_Frame();
    }
    ~SampleSimulation() override { ThreadPool::System_Init(1); }
};

/// After a change that is meant to change what effects look like: MK_RENEW_SIMULATION=1 SampleSimulationTest
TEST_F(SampleSimulation, PlaysAsRecordedOnAnyNumberOfThreads)
{
    for (const int threads : {1, 2}) {
        ThreadPool::System_Init(threads);
        const std::string played = Play_All();
        if (threads == 1 && std::getenv(RENEW)) MKTest::Write_Whole_File(RECORD, std::string_view(played));
        const std::string recorded = MKTest::Read_Text_File(RECORD);
        EXPECT_TRUE(recorded == played) << "On " << threads << " threads " << RECORD << " isn't what plays.\n"
                                        << Differences(Lines(recorded), Lines(played)) << "If the change is meant, "
                                        << RENEW << "=1 in the environment of this test renews the file.";
    }
}

TEST_F(SampleSimulation, RepeatsEachBitAfterARestart)
{
    for (const std::string &file : MKTest::Sample_Files()) {
        SCOPED_TRACE(MKTest::Sample_Name(file));
        SamplePlayer player(file);
        Remove_Slots_In_Turn(player);
        player.Run_Seconds(2.0f);
        const std::string once = Describe(player);
        player.Restart();
        player.Run_Seconds(2.0f);
        EXPECT_EQ(Describe(player), once);
    }
}

/// The vertices of all draws of two seconds, in the order of the draws.
std::vector<uint64_t> Draw_All(const std::string &file)
{
    std::vector<uint64_t> draws;
    SamplePlayer player(file);
    const SmartPtr<vrCamera> camera(new vrCamera);
    camera->Set_Depth_Range(5.0f, 10000.0f);
    camera->Set_Transform(Mat3DClass::Look_At({0.0f, -500.0f, 200.0f}, Vector3(0.0f)));
    for (int frame = 0; frame < 60; ++frame) {
        player.Run_Frame();
        vrNullDriverMethods::Clear_Draws();
        TheGraphicsDriver->Begin_Frame();
        player.Get_Scene().Render(camera.Get(), VR_RENDER_MODE_NORMAL, false);
        TheGraphicsDriver->End_Frame();
        for (const vrNullDrawRecord &draw : vrNullDriverMethods::Get_Draws()) {
            Checksum sum;
            sum.Add(draw.Vertices.data(), draw.Vertices.size());
            draws.push_back(sum.Get());
        }
    }
    return draws;
}

TEST_F(SampleSimulation, DrawsTheSameOnAnyNumberOfThreads)
{
    vrNullDriverMethods::Set_Runs_Tasks(true);
    vrNullDriverMethods::Set_Recording(true);
    ASSERT_TRUE(vrNullDriverMethods::Init(nullptr, 640, 480));
    for (const std::string &file : MKTest::Sample_Files()) {
        ThreadPool::System_Init(1);
        const std::vector<uint64_t> drawn = Draw_All(file);
        EXPECT_FALSE(drawn.empty()) << file;
        ThreadPool::System_Init(4);
        EXPECT_EQ(Draw_All(file), drawn) << file;
    }
    vrNullDriverMethods::Shutdown();
    vrNullDriverMethods::Set_Recording(false);
    vrNullDriverMethods::Set_Runs_Tasks(false);
}

} // namespace
