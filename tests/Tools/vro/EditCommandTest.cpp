#include "Tools/vro/VroProgram.h"

#include "vro/JsonText.h"

#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/File/File.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <map>
#include <sstream>
#include <sys/stat.h>

namespace fs = std::filesystem;
using MKTest::Read_Text_File;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using vro::Json;
using vroTest::Group_Json;
using vroTest::Layer_Json;
using vroTest::Outcome;

namespace
{

constexpr const char *HEAT = R"({"name": "Heat And Saturation"})";
constexpr const char *PLAIN = R"({"name": "Billboard"})";
constexpr const char *OLD_HEAT =
    R"({"name": "Billboard", "parameters": [{"name": "Shader Name", "value": "ParticleBillboardHeat.fx"}]})";

using Row = std::map<std::string, std::string>;

/// The grid that a run printed at its end: each row by "emitter:layer".
std::map<std::string, Row> Grid(const std::string &out)
{
    std::map<std::string, Row> rows;
    std::istringstream lines(out);
    std::vector<std::string> headings;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line.empty() ? line : line.substr(1));
        std::vector<std::string> cells;
        for (std::string word; words >> word;) cells.push_back(word);
        if (headings.empty()) {
            if (!cells.empty() && cells[0] == "Modified") headings = cells;
            continue;
        }
        if (cells.size() != headings.size()) throw std::runtime_error("not a row: " + line);
        Row row;
        for (size_t index = 0; index < cells.size(); ++index) row[headings[index]] = cells[index];
        row["Selected"] = line[0] == '>' ? "true" : "false";
        rows[row["EmitterName"] + ":" + row["ParticleName"]] = row;
    }
    return rows;
}

/// A working directory, and the tool on it.
class Edit : public testing::Test
{
protected:
    Edit() { Shop.Directory.Make_Directory("Art/Models"); }

    std::string Path(const std::string &emitter) const { return Shop.Directory / ("Art/Models/" + emitter + ".vro"); }

    void Add(const std::string &emitter, const std::vector<std::string> &layers)
    {
        Shop.Build("Art/Models/" + emitter + ".vro", Group_Json(layers));
    }

    Outcome Run(std::vector<std::string> arguments, const std::string &shell = "") const
    {
        arguments.insert(arguments.begin(), {"edit", "."});
        return Shop.Vro(arguments, "", shell);
    }

    /// The value that the file holds, as JSON text.
    std::string Value(const std::string &emitter, int layer, const std::string &slot, const std::string &name) const
    {
        const Json json = Json::parse(vroTest::Workshop::Dump(Path(emitter)));
        for (const Json &parameter : json["renderables"][0]["layers"][static_cast<size_t>(layer)][slot]["parameters"]) {
            if (parameter["name"] != name) continue;
            std::string text = vro::To_Text(parameter["value"]);
            text.pop_back();
            return text;
        }
        return "no such parameter";
    }

    void Set_Read_Only(const std::string &emitter) { ::chmod(Path(emitter).c_str(), 0444); }

    /// Puts a program named p4 into the directory that `With_P4` makes the path: it notes its arguments and then does
    /// what `body` says.
    void Write_P4(const std::string &body)
    {
        const std::string path =
            Shop.Directory.Write("bin/p4", "#!/bin/sh\nprintf '%s\\n' \"$*\" >> \"" + Shop.Directory.Get_Path() +
                                               "/p4.log\"\n" + body + "\n");
        ::chmod(path.c_str(), 0755);
    }

    std::string With_P4() const { return "PATH='" + (Shop.Directory / "bin") + "':/usr/bin:/bin"; }
    std::string Without_P4() const { return "PATH='" + (Shop.Directory / "none") + "'"; }
    /// How often p4 was called.
    size_t P4_Calls() const
    {
        if (!fs::exists(Shop.Directory / "p4.log")) return 0;
        const std::string log = Read_Text_File(Shop.Directory / "p4.log");
        return static_cast<size_t>(std::count(log.begin(), log.end(), '\n'));
    }

    vroTest::Workshop Shop;
};

const std::string CHECK_OUT_FAILED =
    "Unable to check out file.: Unable to check out file.\nMake sure that it has been added to Perforce and is checked "
    "out, or that the Read-only tag hasn't been set in Windows.";

} // namespace

TEST_F(Edit, StoresAndShowsTheValuesOfTheSliders)
{
    const struct
    {
        const char *property, *input, *slot, *parameter, *stored, *column, *shown;
    } rows[] = {
        // The maximum of the cutoff doesn't read back as 1000: the tool truncates.
        {"HeatDistanceCutoffPerThousandth", "1000", "visualizer", "Distance Cutoff", "10000.0",
         "HeatDistanceCutoffPerThousandth", "999"},
        {"HeatDistanceCutoffPerThousandth", "0", "visualizer", "Distance Cutoff", "0.01",
         "HeatDistanceCutoffPerThousandth", "0"},
        {"HeatDistanceCutoff", "1000", "visualizer", "Distance Cutoff", "1000.0", "HeatDistanceCutoffPerThousandth",
         "99"},
        {"HeatDistortionScalePerThousandth", "500", "visualizer", "Distortion Scale", "1.0",
         "HeatDistortionScalePerThousandth", "500"},
        {"HeatDistortionScale", "0.0019", "visualizer", "Distortion Scale", "0.0019",
         "HeatDistortionScalePerThousandth", "0"},
        // 500 * 0.004000000189989805 - 2 = 9.4994902...e-08; 1 gives -1.99599999981..., whose nearest float is
        // -1.996000051498413; 1000 gives 2.00000018998..., whose nearest is 2.000000238418579.
        {"SaturationScalePerThousandth", "500", "visualizer", "Saturation Scale", "9.49949e-08", "SaturationScale",
         "9.49949e-08"},
        {"SaturationScalePerThousandth", "500", "visualizer", "Saturation Scale", "9.49949e-08",
         "SaturationScalePerThousandth", "500"},
        {"SaturationScalePerThousandth", "1", "visualizer", "Saturation Scale", "-1.996",
         "SaturationScalePerThousandth", "0"},
        {"SaturationScalePerThousandth", "1000", "visualizer", "Saturation Scale", "2.0000002",
         "SaturationScalePerThousandth", "1000"},
        // 0.35 as a float is just below, and so are its thousandths.
        {"MinimumDynamicLODPerThousandth", "350", "spawner", "Min D-LOD", "0.35", "MinimumDynamicLODPerThousandth",
         "349"},
        {"MinimumDynamicLODPerThousandth", "0", "spawner", "Min D-LOD", "0.0", "MinimumDynamicLOD", "0"},
        {"DynamicLODNearDistancePerThousandth", "250", "spawner", "D-LOD Near Distance", "2500.0",
         "DynamicLODNearDistance", "2500"},
        {"DynamicLODNearDistance", "19.5", "spawner", "D-LOD Near Distance", "19.5",
         "DynamicLODNearDistancePerThousandth", "1"},
        // Ten times the input in 32-bit integers: 429496730 * 10 wraps to 4.
        {"DynamicLODFarDistancePerThousandth", "429496730", "spawner", "D-LOD Far Distance", "4.0",
         "DynamicLODFarDistance", "4"},
        {"DynamicLODFarDistancePerThousandth", "-1", "spawner", "D-LOD Far Distance", "-10.0",
         "DynamicLODFarDistancePerThousandth", "-1"},
        {"GlobalLOD", "2", "spawner", "Global LOD", "2", "GlobalLOD", "Medium"},
        {"GlobalLOD", "Highest", "spawner", "Global LOD", "4", "GlobalLOD", "Highest"},
        {"GlobalLOD", "77", "spawner", "Global LOD", "77", "GlobalLOD", "77"},
        {"SceneLightingAdjustments", "false", "visualizer", "Scene Lighting Adj.", "false", "SceneLightingAdjustments",
         "false"},
    };
    for (const auto &row : rows) {
        const std::string what = std::string(row.property) + "=" + row.input;
        Add("haze", {Layer_Json("air", HEAT)});
        const Outcome outcome = Run({"--set", what, "--save-all"});
        ASSERT_EQ(outcome.Code, 0) << what << outcome.Err;
        EXPECT_EQ(Value("haze", 0, row.slot, row.parameter), row.stored) << what;
        EXPECT_EQ(Grid(outcome.Out)["haze:air"][row.column], row.shown) << what;
        EXPECT_EQ(Grid(Run({}).Out)["haze:air"][row.column], row.shown) << what << ", scanned again";
    }
}

TEST_F(Edit, ARowWithoutHeatShowsItsNeutralValuesAndKeepsThem)
{
    Add("fire", {Layer_Json("flames", PLAIN)});
    const std::string before = Read_Text_File(Path("fire"));
    const Outcome outcome = Run(
        {"--set", "HeatDistanceCutoff=5", "--set", "HeatDistortionScalePerThousandth=5", "--set", "SaturationScale=5"});
    EXPECT_EQ(outcome.Code, 0) << outcome.Err;
    EXPECT_THAT(outcome.Err, HasSubstr("HeatDistanceCutoff: no selected row has this value"));
    Row row = Grid(outcome.Out)["fire:flames"];
    EXPECT_EQ(row["UsesHeatVisualizer"], "false");
    EXPECT_EQ(row["DoesNotUseHeatVisualizer"], "true");
    EXPECT_EQ(row["SupportsHeat"], "false");
    EXPECT_EQ(row["HeatDistanceCutoff"], "0.01");
    for (const char *zero : {"HeatDistanceCutoffPerThousandth", "HeatDistortionScale",
                             "HeatDistortionScalePerThousandth", "SaturationScale", "SaturationScalePerThousandth"})
        EXPECT_EQ(row[zero], "0") << zero;
    EXPECT_EQ(Read_Text_File(Path("fire")), before);
}

TEST_F(Edit, RowsWithoutASpawnerOrALightingSwitchShowTheirDefaults)
{
    Add("odd",
        {R"({"name": "bare"})", R"({"name": "chain", "visualizer": {"name": "Chain"}})", Layer_Json("lit", PLAIN)});
    const Outcome outcome = Run({"--set", "GlobalLOD=Low", "--set", "SceneLightingAdjustments=false", "--save-all"});
    EXPECT_EQ(outcome.Code, 0) << outcome.Err;
    auto grid = Grid(outcome.Out);
    EXPECT_EQ(grid["odd:bare"]["GlobalLOD"], "High");
    EXPECT_EQ(grid["odd:bare"]["SceneLightingAdjustments"], "true");
    EXPECT_EQ(grid["odd:chain"]["SceneLightingAdjustments"], "true");
    EXPECT_EQ(grid["odd:lit"]["GlobalLOD"], "Low");
    EXPECT_EQ(grid["odd:lit"]["SceneLightingAdjustments"], "false");
}

TEST_F(Edit, EditsTheSelectedRowsAndNoOther)
{
    Add("a", {Layer_Json("one", PLAIN), Layer_Json("two", HEAT)});
    Add("b", {Layer_Json("one", HEAT), Layer_Json("two", PLAIN)});
    Add("c", {Layer_Json("one", PLAIN)});
    const std::string before = Read_Text_File(Path("c"));
    const Outcome outcome = Run({"--select", "a:two", "--select", "b", "--set", "MinimumDynamicLOD=0.5", "--set",
                                 "HeatDistanceCutoff=7", "--save-all"});
    EXPECT_EQ(outcome.Code, 0) << outcome.Err;
    auto grid = Grid(outcome.Out);
    const std::map<std::string, std::pair<std::string, std::string>> expected = {{"a:one", {"1", "0.01"}},
                                                                                 {"a:two", {"0.5", "7"}},
                                                                                 {"b:one", {"0.5", "7"}},
                                                                                 {"b:two", {"0.5", "0.01"}},
                                                                                 {"c:one", {"1", "0.01"}}};
    for (const auto &[name, values] : expected) {
        EXPECT_EQ(grid[name]["MinimumDynamicLOD"], values.first) << name;
        EXPECT_EQ(grid[name]["HeatDistanceCutoff"], values.second) << name;
        EXPECT_EQ(grid[name]["Selected"], values.first == "1" ? "false" : "true") << name;
        EXPECT_EQ(grid[name]["Modified"], "false") << name;
    }
    EXPECT_EQ(Value("b", 0, "visualizer", "Distance Cutoff"), "7.0");
    EXPECT_EQ(Read_Text_File(Path("c")), before);
}

TEST_F(Edit, AppliesWhatIsSetInItsOrderThenConvertsThenSaves)
{
    Add("fire", {Layer_Json("shimmer", OLD_HEAT)});
    EXPECT_EQ(Grid(Run({}).Out)["fire:shimmer"]["SupportsHeat"], "true");
    // The conversion comes last, so its cutoff of 1000 wins over what is set; of two values the later one stays.
    const Outcome outcome = Run({"--convert-to-heat", "--save", "--set", "GlobalLOD=1", "--set", "GlobalLOD=2", "--set",
                                 "HeatDistanceCutoff=5"});
    ASSERT_EQ(outcome.Code, 0) << outcome.Err;
    Row row = Grid(outcome.Out)["fire:shimmer"];
    EXPECT_EQ(row["UsesHeatVisualizer"], "true");
    EXPECT_EQ(row["HeatDistanceCutoff"], "1000");
    EXPECT_EQ(row["HeatDistanceCutoffPerThousandth"], "99");
    EXPECT_EQ(row["HeatDistortionScale"], "1");
    EXPECT_EQ(row["SaturationScale"], "1");
    EXPECT_EQ(row["GlobalLOD"], "Medium");
    EXPECT_EQ(Value("fire", 0, "visualizer", "Shader Name"), "\"ParticleBillboardHeat.fx\"");
    EXPECT_EQ(Value("fire", 0, "visualizer", "Distance Cutoff"), "1000.0");

    const Outcome again = Run({"--convert-to-heat"});
    EXPECT_EQ(again.Code, 1);
    EXPECT_THAT(again.Err, HasSubstr("no selected row is a billboard that can be converted"));
}

TEST_F(Edit, SavesNothingUnlessTold)
{
    Add("fire", {Layer_Json("flames", PLAIN)});
    const std::string before = Read_Text_File(Path("fire"));
    const Outcome outcome = Run({"--set", "GlobalLOD=1"});
    EXPECT_EQ(outcome.Code, 0);
    EXPECT_EQ(Grid(outcome.Out)["fire:flames"]["Modified"], "true");
    EXPECT_EQ(Read_Text_File(Path("fire")), before);
    EXPECT_EQ(Run({"--save"}).Code, 0);
    EXPECT_EQ(Read_Text_File(Path("fire")), before) << "nothing was modified, so nothing is written";
}

TEST_F(Edit, SaveEndsAtTheSecondRowOfASavedEmitterAndTellsWhatStays)
{
    // The tool's save button stops at the first selected row that isn't modified, and the first save clears the flag of
    // the emitter's other rows.
    Add("a", {Layer_Json("one", PLAIN), Layer_Json("two", PLAIN)});
    Add("b", {Layer_Json("one", PLAIN)});
    const Outcome outcome = Run({"--set", "GlobalLOD=1", "--save"});
    EXPECT_EQ(outcome.Code, 0);
    EXPECT_EQ(Value("a", 1, "spawner", "Global LOD"), "1");
    EXPECT_EQ(Value("b", 0, "spawner", "Global LOD"), "0");
    EXPECT_THAT(outcome.Err, HasSubstr("b.vro: not saved"));
    EXPECT_THAT(outcome.Err, Not(HasSubstr("a.vro")));
    EXPECT_EQ(Run({"--set", "GlobalLOD=3", "--save-all"}).Code, 0);
    EXPECT_EQ(Value("b", 0, "spawner", "Global LOD"), "3");
}

TEST_F(Edit, AReadOnlyFileIsCheckedOutByP4)
{
    Write_P4("chmod u+w \"$2\"");
    const struct
    {
        const char *what;
        std::vector<std::string> options;
        const char *question;
    } runs[] = {
        {"asked", {"--yes"}, "Flare Trim: Checkout 'fire' from perforce?  [Yes]\n"},
        {"without asking", {"--auto-checkout"}, ""},
    };
    size_t calls = 0;
    for (const auto &run : runs) {
        Add("fire", {Layer_Json("flames", PLAIN)});
        Set_Read_Only("fire");
        std::vector<std::string> arguments = {"--set", "GlobalLOD=1", "--save"};
        arguments.insert(arguments.end(), run.options.begin(), run.options.end());
        const Outcome outcome = Run(arguments, With_P4());
        EXPECT_EQ(outcome.Code, 0) << run.what << outcome.Err;
        EXPECT_EQ(outcome.Out.substr(0, outcome.Out.find("  Modified")), run.question) << run.what;
        EXPECT_EQ(Value("fire", 0, "spawner", "Global LOD"), "1") << run.what;
        EXPECT_EQ(P4_Calls(), ++calls) << run.what;
        ::unlink(Path("fire").c_str());
    }
    EXPECT_THAT(Read_Text_File(Shop.Directory / "p4.log"), HasSubstr("edit " + Path("fire") + "\n"));

    Add("fire", {Layer_Json("flames", PLAIN)});
    EXPECT_EQ(Run({"--set", "GlobalLOD=1", "--save", "--auto-checkout"}, With_P4()).Code, 0);
    EXPECT_EQ(P4_Calls(), calls) << "a writable file needs no p4";
}

TEST_F(Edit, ADeclinedOrFailedCheckoutLeavesTheFileAndTheExitCodeTells)
{
    Write_P4("exit 1");
    Add("fire", {Layer_Json("flames", PLAIN)});
    Add("smoke", {Layer_Json("puff", PLAIN)});
    Set_Read_Only("fire");
    const std::string before = Read_Text_File(Path("fire"));
    const std::string question = "Flare Trim: Checkout 'fire' from perforce?  ";
    const struct
    {
        const char *what;
        std::vector<std::string> options;
        std::string shell, boxes;
        size_t calls;
    } runs[] = {
        {"declined by default", {}, With_P4(), question + "[No]\n", 0},
        {"declined", {"--no"}, With_P4(), question + "[No]\n", 0},
        {"p4 fails, and once more",
         {"--yes"},
         With_P4(),
         question + "[Yes]\n" + CHECK_OUT_FAILED + "  [Retry]\n" + CHECK_OUT_FAILED + "  [Cancel]\n",
         2},
        {"p4 fails, no retry", {"--auto-checkout"}, With_P4(), CHECK_OUT_FAILED + "  [Cancel]\n", 1},
        {"no p4",
         {"--auto-checkout", "--yes"},
         Without_P4(),
         CHECK_OUT_FAILED + "  [Retry]\n" + CHECK_OUT_FAILED + "  [Cancel]\n",
         0},
    };
    size_t calls = 0;
    for (const auto &run : runs) {
        Add("smoke", {Layer_Json("puff", PLAIN)});
        std::vector<std::string> arguments = {"--set", "GlobalLOD=1", "--save-all"};
        arguments.insert(arguments.end(), run.options.begin(), run.options.end());
        const Outcome outcome = Run(arguments, run.shell);
        EXPECT_EQ(outcome.Code, 1) << run.what;
        EXPECT_EQ(outcome.Out.substr(0, outcome.Out.find("  Modified")), run.boxes) << run.what;
        EXPECT_THAT(outcome.Err, HasSubstr("fire.vro: not saved")) << run.what;
        EXPECT_EQ(Read_Text_File(Path("fire")), before) << run.what;
        EXPECT_EQ(Grid(outcome.Out)["fire:flames"]["Modified"], "true") << run.what;
        EXPECT_EQ(Value("smoke", 0, "spawner", "Global LOD"), "1") << run.what << ": the other one is saved";
        EXPECT_EQ(P4_Calls(), calls += run.calls) << run.what;
    }
}

TEST_F(Edit, AFullDiskIsAFailure)
{
    // With no room at all the save itself fails. With room for the header alone the tool doesn't notice, and it is the
    // file that tells. The shell counts in blocks of 512 bytes.
    const std::vector<std::string> layers(9, Layer_Json("flames", HEAT));
    for (const auto &[room, reason] : std::map<std::string, std::string>{{"0", "not saved"}, {"1", "the disk full?"}}) {
        Add("fire", layers);
        ASSERT_GT(fs::file_size(Path("fire")), 512u);
        const Outcome outcome = Run({"--set", "GlobalLOD=1", "--save-all"}, "trap '' XFSZ; ulimit -f " + room + ";");
        EXPECT_EQ(outcome.Code, 1) << room;
        EXPECT_THAT(outcome.Err, HasSubstr("vro: " + Path("fire") + ": ")) << room;
        EXPECT_THAT(outcome.Err, HasSubstr(reason)) << room;
    }
}

TEST_F(Edit, NamesAreNotOnlyAscii)
{
    Add("f\xc3\xb6hn \xe7\x81\xab", {Layer_Json("gl\xc3\xbcht", PLAIN)});
    const Outcome outcome =
        Run({"--select", "f\xc3\xb6hn \xe7\x81\xab:gl\xc3\xbcht", "--set", "GlobalLOD=1", "--save-all"});
    EXPECT_EQ(outcome.Code, 0) << outcome.Err;
    EXPECT_EQ(Value("f\xc3\xb6hn \xe7\x81\xab", 0, "spawner", "Global LOD"), "1");
    const Outcome denied = Run({"--select", "f\xc3\xb6hn:x"});
    EXPECT_EQ(denied.Code, 1);
    EXPECT_THAT(denied.Err, HasSubstr("f\xc3\xb6hn:x: no row"));
}

TEST_F(Edit, WrongPropertiesAndValuesAreWrongUsage)
{
    Add("haze", {Layer_Json("air", HEAT)});
    const std::string before = Read_Text_File(Path("haze"));
    for (const char *set :
         {"GlobalLoD=1", "EmitterName=x", "SupportsHeat=true", "GlobalLOD=", "GlobalLOD=1.5", "MinimumDynamicLOD=much",
          "MinimumDynamicLOD=nan", "HeatDistanceCutoff=inf", "MinimumDynamicLOD=0.5 ",
          "HeatDistanceCutoffPerThousandth=2147483648", "SceneLightingAdjustments=1"})
    {
        const Outcome outcome = Run({"--set", "DynamicLODFarDistance=3", "--set", set, "--save-all"});
        EXPECT_EQ(outcome.Code, 2) << set;
        EXPECT_THAT(outcome.Err, HasSubstr(std::string(set).substr(0, std::string(set).find('=')))) << set;
        EXPECT_EQ(Read_Text_File(Path("haze")), before) << set;
    }
}

TEST_F(Edit, MissingAndEmptyWorkingDirectories)
{
    const Outcome empty = Run({"--save-all"});
    EXPECT_EQ(empty.Code, 0) << empty.Err;
    EXPECT_TRUE(Grid(empty.Out).empty());
    EXPECT_EQ(Run({"--set", "GlobalLOD=1"}).Code, 1);

    Shop.Directory.Make_Directory("bare");
    for (const char *directory : {"bare", "missing"}) {
        const Outcome outcome = Shop.Vro({"edit", directory});
        EXPECT_EQ(outcome.Code, 1) << directory;
        EXPECT_THAT(outcome.Out, HasSubstr("Exception: ")) << directory;
        EXPECT_THAT(outcome.Err, HasSubstr(std::string("vro: ") + directory + ": ")) << directory;
        EXPECT_THAT(outcome.Err, HasSubstr("No such file or directory")) << directory;
    }
}

TEST_F(Edit, ADamagedEmitterEndsTheScanAndAModelDoesNot)
{
    Add("fire", {Layer_Json("flames", PLAIN)});
    {
        FileClass file(Path("tree"));
        ChunkFileWriterClass writer(&file, 129, 6, false);
        writer.Open_Chunk(0x100);
        writer.Write_Int32(1);
        writer.Close_Chunk();
    }
    Shop.Directory.Write("Art/Models/notes.vro", "no chunk file");
    const Outcome outcome = Run({});
    EXPECT_EQ(outcome.Code, 0) << outcome.Err;
    EXPECT_EQ(Grid(outcome.Out).size(), 1u);

    Shop.Build("Art/Models/broken.vro", Group_Json({Layer_Json("flames", PLAIN)}), "binary");
    const std::string bytes = Read_Text_File(Path("broken"));
    Shop.Directory.Write("Art/Models/broken.vro", bytes.substr(0, bytes.size() / 2));
    const Outcome failed = Run({"--set", "GlobalLOD=1", "--save-all"});
    EXPECT_EQ(failed.Code, 1);
    EXPECT_THAT(failed.Err, HasSubstr("broken.vro"));
    EXPECT_EQ(Value("fire", 0, "spawner", "Global LOD"), "0");
}
