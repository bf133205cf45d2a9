#include "Tools/Code/FakeP4.h"
#include "Tools/vro/VroProgram.h"

#include "vro/JsonText.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <map>
#include <sstream>

namespace fs = std::filesystem;
using MKTest::Read_Text_File;
using testing::HasSubstr;
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

    vroTest::Workshop Shop;
};

const std::string CHECK_OUT = "Flare Trim: Checkout 'fire' from perforce?  ";
const std::string CHECK_OUT_FAILED =
    "Unable to check out file.: Unable to check out file.\nMake sure that it has been added to Perforce and is checked "
    "out, or that the Read-only tag hasn't been set in Windows.";

} // namespace

TEST_F(Edit, StoresAndShowsTheValuesOfTheSliders)
{
    const struct
    {
        const char *set, *slot, *parameter, *stored, *column, *shown;
    } rows[] = {
        // The maximum of the cutoff doesn't read back as 1000: the tool truncates.
        {"HeatDistanceCutoffPerThousandth=1000", "visualizer", "Distance Cutoff", "10000.0",
         "HeatDistanceCutoffPerThousandth", "999"},
        {"GlobalLOD=Highest", "spawner", "Global LOD", "4", "GlobalLOD", "Highest"},
    };
    for (const auto &row : rows) {
        Add("haze", {Layer_Json("air", HEAT)});
        const Outcome outcome = Run({"--set", row.set, "--save-all"});
        ASSERT_EQ(outcome.Code, 0) << row.set << outcome.Err;
        EXPECT_EQ(Value("haze", 0, row.slot, row.parameter), row.stored) << row.set;
        EXPECT_EQ(Grid(outcome.Out)["haze:air"][row.column], row.shown) << row.set;
    }
}

TEST_F(Edit, ARowWithoutHeatIsTold)
{
    Add("fire", {Layer_Json("flames", PLAIN)});
    const Outcome outcome = Run({"--set", "HeatDistanceCutoff=5"});
    EXPECT_EQ(outcome.Code, 0);
    EXPECT_THAT(outcome.Err, HasSubstr("HeatDistanceCutoff: no selected row has this value"));
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
    }
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
    EXPECT_EQ(row["HeatDistanceCutoff"], "1000");
    EXPECT_EQ(row["GlobalLOD"], "Medium");
    EXPECT_EQ(Value("fire", 0, "visualizer", "Distance Cutoff"), "1000.0");

    const Outcome again = Run({"--convert-to-heat"});
    EXPECT_EQ(again.Code, 1);
    EXPECT_THAT(again.Err, HasSubstr("no selected row is a billboard that can be converted"));
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
}

TEST_F(Edit, AReadOnlyFileIsCheckedOutByP4)
{
    const struct
    {
        const char *what, *p4;
        std::vector<std::string> options;
        std::string boxes;
        size_t calls;
        bool isSaved;
    } runs[] = {
        {"not asked", ToolTest::MAKE_WRITABLE, {"--auto-checkout"}, "", 1, true},
        {"declined by default", ToolTest::MAKE_WRITABLE, {}, CHECK_OUT + "[No]\n", 0, false},
        {"p4 fails once",
         "[ -e \"$2.second\" ] && chmod u+w \"$2\"\ntouch \"$2.second\"\n",
         {"--yes"},
         CHECK_OUT + "[Yes]\n" + CHECK_OUT_FAILED + "  [Retry]\n",
         2,
         true},
        {"p4 fails, and once more",
         ToolTest::REFUSE,
         {"--yes"},
         CHECK_OUT + "[Yes]\n" + CHECK_OUT_FAILED + "  [Retry]\n" + CHECK_OUT_FAILED + "  [Cancel]\n",
         2,
         false},
        {"there is no p4", nullptr, {"--auto-checkout"}, CHECK_OUT_FAILED + "  [Cancel]\n", 0, false},
    };
    for (const auto &run : runs) {
        SCOPED_TRACE(run.what);
        const MKTest::TempDirectory bin;
        const ToolTest::FakeP4 p4(bin, run.p4 ? run.p4 : "");
        if (!run.p4) fs::remove(bin / "bin/p4");
        fs::remove(Path("fire"));
        for (const char *emitter : {"fire", "smoke"}) Add(emitter, {Layer_Json("flames", PLAIN)});
        fs::permissions(Path("fire"), fs::perms::owner_read);
        std::vector<std::string> arguments = {"--set", "GlobalLOD=1", "--save-all"};
        arguments.insert(arguments.end(), run.options.begin(), run.options.end());
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.Code, run.isSaved ? 0 : 1) << outcome.Err;
        EXPECT_EQ(outcome.Out.substr(0, outcome.Out.find("  Modified")), run.boxes);
        EXPECT_EQ(outcome.Err.find("fire.vro: not saved") == std::string::npos, run.isSaved) << outcome.Err;
        EXPECT_EQ(outcome.Err.find("fire.vro: it is read-only") == std::string::npos, run.isSaved) << outcome.Err;
        EXPECT_EQ(Value("fire", 0, "spawner", "Global LOD"), run.isSaved ? "1" : "0");
        EXPECT_EQ(Grid(outcome.Out)["fire:flames"]["Modified"], run.isSaved ? "false" : "true");
        EXPECT_EQ(Value("smoke", 0, "spawner", "Global LOD"), "1") << "the writable one is saved without p4";
        const std::string call = "[edit][" + Path("fire") + "]\n";
        EXPECT_EQ(p4.Calls(), run.calls == 0 ? "" : run.calls == 1 ? call : call + call);
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
    EXPECT_THAT(Run({"--select", "f\xc3\xb6hn:x"}).Err, HasSubstr("f\xc3\xb6hn:x: no row"));
}

TEST_F(Edit, WrongPropertiesAndValuesAreWrongUsage)
{
    Add("haze", {Layer_Json("air", HEAT)});
    const std::string before = Read_Text_File(Path("haze"));
    for (const std::string set : {"GlobalLoD=1", "SupportsHeat=true", "GlobalLOD=", "MinimumDynamicLOD=nan",
                                  "MinimumDynamicLOD=0.5 ", "DynamicLODNearDistancePerThousandth=1.5",
                                  "DynamicLODNearDistancePerThousandth=99999999999", "SceneLightingAdjustments=1"})
    {
        const Outcome outcome = Run({"--set", "DynamicLODFarDistance=3", "--set", set, "--save-all"});
        EXPECT_EQ(outcome.Code, 2) << set;
        EXPECT_THAT(outcome.Err, HasSubstr(set.substr(0, set.find('=')))) << set;
        EXPECT_EQ(Read_Text_File(Path("haze")), before) << set;
    }
}

TEST_F(Edit, MissingAndEmptyWorkingDirectories)
{
    const Outcome empty = Run({"--save-all"});
    EXPECT_EQ(empty.Code, 0) << empty.Err;
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

TEST_F(Edit, ADamagedEmitterEndsTheScan)
{
    Add("fire", {Layer_Json("flames", PLAIN)});
    Shop.Build("Art/Models/broken.vro", Group_Json({Layer_Json("flames", PLAIN)}), "binary");
    const std::string bytes = Read_Text_File(Path("broken"));
    Shop.Directory.Write("Art/Models/broken.vro", bytes.substr(0, bytes.size() / 2));
    const Outcome failed = Run({"--set", "GlobalLOD=1", "--save-all"});
    EXPECT_EQ(failed.Code, 1);
    EXPECT_THAT(failed.Err, HasSubstr("broken.vro"));
    EXPECT_EQ(Value("fire", 0, "spawner", "Global LOD"), "0");
}
