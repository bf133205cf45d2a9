#include "Samples/SamplePlayer.h"

#include "common/TempFiles.h"

#include "vro/TextEncoding.h"

#include "MKLib/MKMath/FloatingPoint.h"
#include "MKLib/ThreadPool.h"
#include "vrGraphics/nulldriver/vrNullDriverMethods.h"

#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>

namespace
{

using MKTest::SamplePlayer;

const std::string RECORD = MK_SAMPLE_TESTS "/simulation.txt";
constexpr const char *RENEW = "MK_RENEW_SIMULATION";
constexpr float TIMES[] = {0.5f, 2.0f, 5.0f};
constexpr uint64_t FNV_BASIS = 0xcbf29ce484222325u;

/// Goes on with a 64-bit FNV-1a.
void Add(uint64_t &sum, const void *data, size_t size)
{
    for (size_t index = 0; index < size; ++index)
        sum = (sum ^ static_cast<const uint8_t *>(data)[index]) * 0x100000001b3u;
}

/// Over all channels of the live particles, the oldest first. "Render" isn't one: it lists what is drawn.
uint64_t Checksum_Of(const vrMKPBuffer &buffer)
{
    uint64_t sum = FNV_BASIS;
    for (int channel = 0; channel < static_cast<int>(MKP_ATTRIBUTE_COUNT); ++channel) {
        if (channel == MKP_RENDER) continue;
        const auto attribute = static_cast<MKPAttribTypes>(channel);
        for (const vrMKPSpan span : buffer.Live_Spans())
            for (int at = 0; at < span.Count; ++at) {
                uint8_t element[sizeof(Vector3)];
                buffer.Copy_Element(attribute, span.First + at, element);
                Add(sum, element, vrMKPBuffer::Get_Element_Size(attribute));
            }
    }
    return sum;
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
        EXPECT_EQ(MKTest::Read_Text_File(RECORD), played)
            << "On " << threads << " threads " << RECORD << " isn't what plays. If the change is meant, " << RENEW
            << "=1 in the environment of this test renews the file.";
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

/// A checksum of the vertices of all draws of two seconds.
uint64_t Draw_All(const std::string &file)
{
    uint64_t sum = FNV_BASIS;
    SamplePlayer player(file);
    for (int frame = 0; frame < 60; ++frame) {
        player.Run_Frame();
        vrNullDriverMethods::Clear_Draws();
        player.Draw();
        for (const vrNullDrawRecord &draw : vrNullDriverMethods::Get_Draws())
            Add(sum, draw.Vertices.data(), draw.Vertices.size());
    }
    return sum;
}

TEST_F(SampleSimulation, DrawsTheSameOnAnyNumberOfThreads)
{
    vrNullDriverMethods::Set_Runs_Tasks(true);
    vrNullDriverMethods::Set_Recording(true);
    ASSERT_TRUE(vrNullDriverMethods::Init(nullptr, 640, 480));
    for (const std::string &file : MKTest::Sample_Files()) {
        ThreadPool::System_Init(1);
        const uint64_t drawn = Draw_All(file);
        EXPECT_NE(drawn, FNV_BASIS) << file;
        ThreadPool::System_Init(4);
        EXPECT_EQ(Draw_All(file), drawn) << file;
    }
    vrNullDriverMethods::Shutdown();
    vrNullDriverMethods::Set_Recording(false);
    vrNullDriverMethods::Set_Runs_Tasks(false);
}

} // namespace
