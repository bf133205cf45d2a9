#include "Tools/vro/VroProgram.h"

#include "vro/JsonText.h"

#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/File/File.h"

#include <gmock/gmock.h>
#include <unistd.h>

using MKTest::Read_Text_File;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using vro::Json;
using vroTest::Outcome;
using vroTest::Workshop;

namespace
{

/// A full disk, as near as a test may come: every write to a file fails.
const std::string FULL_DISK = "trap '' XFSZ; ulimit -f 0;";

const std::string CAMPFIRE =
    vroTest::Group_Json({vroTest::Layer_Json("flames", R"({"name": "Billboard"})"),
                         vroTest::Layer_Json("shimmer", R"({"name": "Heat And Saturation"})")});

/// A chunk file with one chunk at its root, and in it what `fill` writes.
template <typename Fill>
void Write_Chunks(const std::string &path, uint32_t root, Fill fill)
{
    FileClass file(path);
    ChunkFileWriterClass writer(&file, 0, 6, false);
    writer.Open_Chunk(root);
    fill(writer);
    writer.Close_Chunk();
    if (!writer.Close()) throw std::runtime_error("can't write " + path);
}

void Add_Number_Chunk(ChunkFileWriterClass &writer, uint32_t id)
{
    writer.Open_Chunk(id);
    writer.Write_Int32(1);
    writer.Close_Chunk();
}

} // namespace

TEST(CommandLine, WrongUsageIsToldOnStandardError)
{
    const Workshop shop;
    shop.Build("a.vro", CAMPFIRE);
    const std::vector<std::string> lines[] = {
        {},
        {"unknown"},
        {"build", "a.json"},
        {"build", "a.json", "-o", "b.vro", "--encoding", "lzma"},
        {"edit", ".", "--save", "--save-all"},
    };
    for (const auto &line : lines) {
        const Outcome outcome = shop.Vro(line);
        const std::string what = testing::PrintToString(line);
        EXPECT_EQ(outcome.Code, 2) << what;
        EXPECT_THAT(outcome.Out, IsEmpty()) << what;
        EXPECT_THAT(outcome.Err, Not(IsEmpty())) << what;
    }
}

TEST(CommandLine, BadInputEndsWithItsNameAndTheReason)
{
    const Workshop shop;
    const std::string bytes = Read_Text_File(shop.Build("whole.vro", CAMPFIRE, "binary"));
    shop.Directory.Write("truncated.vro", bytes.substr(0, bytes.size() / 2));
    shop.Directory.Write("empty.vro", "");
    shop.Directory.Write("text.vro", "not a chunk file at all");
    Write_Chunks(shop.Directory / "model.vro", 0x100, [](auto &writer) { Add_Number_Chunk(writer, 1); });
    shop.Directory.Make_Directory("folder.vro");
    const struct
    {
        const char *file, *reason;
    } inputs[] = {
        {"missing.vro", "No such file or directory"},
        {"truncated.vro", "damaged"},
        {"empty.vro", "the file is empty"},
        {"text.vro", "not a chunk file"},
        {"model.vro", "not an emitter file: its first chunk is 0x100"},
        {"folder.vro", "director"}, // a command that takes directories says that it holds no emitter file
    };
    for (const auto &input : inputs) {
        const std::string said = "vro: " + std::string(input.file) + ": ";
        for (const std::vector<std::string> &line :
             std::vector<std::vector<std::string>>{{"info", input.file},
                                                   {"dump", input.file},
                                                   {"check", input.file},
                                                   {"simulate", input.file, "--frames", "1", "--dt", "0.1"},
                                                   {"bench", input.file},
                                                   {"rewrite", input.file, "-o", "out.vro"}})
        {
            const Outcome outcome = shop.Vro(line);
            EXPECT_EQ(outcome.Code, 1) << line[0] << " " << input.file;
            EXPECT_THAT(outcome.Err, HasSubstr(said)) << line[0];
            EXPECT_THAT(outcome.Err.substr(outcome.Err.rfind(said)), HasSubstr(input.reason)) << line[0];
        }
    }
    EXPECT_THAT(shop.Vro({"chunks", "model.vro"}).Out, HasSubstr("0x0100"));
    for (const char *file : {"missing.vro", "truncated.vro", "empty.vro"}) {
        const Outcome outcome = shop.Vro({"chunks", file, "--json"});
        EXPECT_EQ(outcome.Code, 1) << file;
        EXPECT_THAT(outcome.Err, HasSubstr("vro: " + std::string(file) + ": "));
        // What was read before the damage is a whole document all the same.
        EXPECT_TRUE(outcome.Out.empty() || Json::accept(outcome.Out)) << file;
    }
    EXPECT_NE(::access((shop.Directory / "out.vro").c_str(), F_OK), 0);
}

// What the engine logged once bore question marks for the letters that the locale lacks.
TEST(CommandLine, TheLogNamesFilesInEveryLocale)
{
    const Workshop workshop;
    workshop.Directory.Write("Feuer_\u00e9.vro", std::string("CH\x02\x01\x01\xff\xff\xff", 8));
    const Outcome outcome = workshop.Vro({"info", "Feuer_\u00e9.vro"}, "", "LC_ALL=C");
    EXPECT_EQ(outcome.Code, 1);
    EXPECT_THAT(outcome.Err, HasSubstr("ChunkFile: "));
    EXPECT_THAT(outcome.Err, Not(HasSubstr("?")));
}

TEST(CommandLine, BadJsonNamesFileAndPlaceAndWritesNothing)
{
    const Workshop shop;
    shop.Directory.Write("effect.json", R"({"renderables": [{"layers": [{"spawner": {"id": 10}}]}]})");
    shop.Directory.Write("out.vro", "before");
    const Outcome outcome = shop.Vro({"build", "effect.json", "-o", "out.vro"});
    EXPECT_EQ(outcome.Code, 1);
    EXPECT_THAT(outcome.Err, StartsWith("vro: effect.json: /renderables/0/layers/0/spawner: "));
    EXPECT_EQ(Read_Text_File(shop.Directory / "out.vro"), "before");
    for (const char *file : {"missing.json", "."}) {
        const Outcome unread = shop.Vro({"build", file, "-o", "out.vro"});
        EXPECT_EQ(unread.Code, 1);
        EXPECT_THAT(unread.Err, StartsWith("vro: " + std::string(file) + ": "));
    }
}

TEST(CommandLine, ADashStandsForTheStandardStreams)
{
    const Workshop shop;
    const std::string bytes = Read_Text_File(shop.Build("effect.vro", CAMPFIRE));
    const Outcome dumped = shop.Vro({"dump", "-"}, bytes);
    ASSERT_EQ(dumped.Code, 0) << dumped.Err;
    EXPECT_EQ(shop.Vro({"dump", "effect.vro", "-o", "-"}).Out, Workshop::Dump(shop.Directory / "effect.vro"));
    const Outcome built = shop.Vro({"build", "-", "-o", "-"}, dumped.Out);
    ASSERT_EQ(built.Code, 0) << built.Err;
    EXPECT_EQ(shop.Vro({"rewrite", "-", "-o", "-"}, built.Out).Out, built.Out);
    for (const std::vector<std::string> &line : std::vector<std::vector<std::string>>{
             {"check", "-"}, {"info", "-"}, {"chunks", "-"}, {"simulate", "-", "--frames", "2", "--dt", "0.1"}})
    {
        const Outcome outcome = shop.Vro(line, built.Out);
        EXPECT_EQ(outcome.Code, 0) << line[0] << outcome.Err;
        EXPECT_THAT(outcome.Out, Not(IsEmpty())) << line[0];
        EXPECT_EQ(shop.Vro(line, "").Code, 1) << line[0];
    }
    // A named pipe can't be read to and fro either.
    EXPECT_EQ(shop.Vro({"dump", "pipe.vro"}, "", "mkfifo pipe.vro; cat effect.vro > pipe.vro &").Code, 0);
}

TEST(CommandLine, AFailedWriteLeavesTheTargetAsItWas)
{
    const Workshop shop;
    shop.Build("effect.vro", CAMPFIRE);
    const std::string target = shop.Directory.Write("target", "before");
    for (const char *command : {"dump", "rewrite"}) {
        const Outcome outcome = shop.Vro({command, "effect.vro", "-o", "target"}, "", FULL_DISK);
        EXPECT_EQ(outcome.Code, 1) << command;
        EXPECT_THAT(outcome.Err, HasSubstr("vro: target: File too large")) << command;
        EXPECT_EQ(Read_Text_File(target), "before") << command;
    }
}

TEST(CommandLine, AFullStandardOutputIsAFailure)
{
    const Workshop shop;
    shop.Build("effect.vro", CAMPFIRE);
    for (const std::vector<std::string> &line :
         std::vector<std::vector<std::string>>{{"plugins"},
                                               {"info", "effect.vro"},
                                               {"dump", "effect.vro"},
                                               {"check", "effect.vro"},
                                               {"chunks", "effect.vro"},
                                               {"rewrite", "effect.vro", "-o", "-"},
                                               {"simulate", "effect.vro", "--frames", "2", "--dt", "0.1"}})
    {
        const Outcome outcome = shop.Vro(line, "", "exec > /dev/full;");
        EXPECT_EQ(outcome.Code, 1) << testing::PrintToString(line);
        EXPECT_THAT(outcome.Err, StartsWith("vro: ")) << testing::PrintToString(line);
    }
}

TEST(CommandLine, InfoShowsTheLayersOfFilesAndDirectories)
{
    const Workshop shop;
    shop.Build("models/campfire.vro", CAMPFIRE);
    shop.Build("models/caf\xc3\xa9.vro", R"({"renderables": [{"kind": "model", "name": "crate"}]})");
    Write_Chunks(shop.Directory / "models/tree.vro", 0x100, [](auto &writer) { Add_Number_Chunk(writer, 1); });
    const Outcome outcome = shop.Vro({"info", "models"});
    EXPECT_EQ(outcome.Code, 0) << outcome.Err;
    EXPECT_THAT(outcome.Out, HasSubstr("campfire  (models/campfire.vro)  1 renderable, 2 layers\n"));
    EXPECT_THAT(outcome.Out, HasSubstr("caf\xc3\xa9"));
    EXPECT_THAT(outcome.Out, Not(HasSubstr("tree"))) << "a directory may hold other assets of the same extension";
    // One bad file doesn't hide the others.
    const Outcome mixed = shop.Vro({"info", "missing.vro", "models/campfire.vro"});
    EXPECT_EQ(mixed.Code, 1);
    EXPECT_THAT(mixed.Out, HasSubstr("flames"));
}

TEST(CommandLine, CheckTellsWhatALoadMends)
{
    const Workshop shop;
    shop.Build("good.vro", CAMPFIRE);
    Write_Chunks(shop.Directory / "odd.vro", 0x1500, [](auto &writer) { Add_Number_Chunk(writer, 0x7777); });
    const Outcome clean = shop.Vro({"check", "good.vro"});
    EXPECT_EQ(clean.Code, 0) << clean.Err;
    EXPECT_EQ(clean.Out, "1 file checked, 0 findings, 0 failed\n");
    const Outcome mended = shop.Vro({"check", "odd.vro"});
    EXPECT_EQ(mended.Code, 0) << mended.Err;
    EXPECT_THAT(mended.Out, HasSubstr("odd.vro: file: unknown chunk 0x7777: "));
    EXPECT_THAT(mended.Out, HasSubstr("1 file checked, 1 finding, 0 failed\n"));
    shop.Directory.Write("bad.vro", "junk");
    const Outcome failed = shop.Vro({"check", "good.vro", "bad.vro", "odd.vro"});
    EXPECT_EQ(failed.Code, 1);
    EXPECT_THAT(failed.Out, HasSubstr("3 files checked, 1 finding, 1 failed\n"));
}

TEST(CommandLine, PluginsAreTheWholeReference)
{
    const Json kinds = Json::parse(Workshop().Vro({"plugins", "--json"}).Out);
    ASSERT_EQ(kinds.size(), 129u);
    for (const Json &kind : kinds)
        for (const Json &parameter : kind["parameters"]) {
            EXPECT_EQ(parameter.contains("min"), parameter.contains("max")) << parameter;
            if (parameter["kind"] != "Enumeration") continue;
            const size_t index = parameter["default"]["index"];
            EXPECT_EQ(parameter["default"]["label"], parameter["labels"][index]) << parameter;
        }
}
