#pragma once

#include "Code/ApplicationCore.h"
#include "Code/NoPreview.h"
#include "Headless/HeadlessApplication.h"
#include "Headless/HeadlessForms.h"
#include "MKLib/RefCount.h"
#include "common/Reports.h"
#include "common/TempFiles.h"
#include "vrGraphics/plugins/base/vrMKPPluginIds.h"

#include <memory>
#include <string>
#include <vector>

class vrMKParticleEmitter;

namespace ToolTest
{

constexpr int NO_PLUGIN = -1;

/// A layer of a test's emitter file.
struct Layer
{
    std::string name = "layer";
    int spawner = kvrMKPShapeSpawner;
    int visualizer = kvrMKPBillboardVisualizer;
    std::string shader; ///< empty keeps the visualizer's own
};

constexpr const char *OLD_HEAT_SHADER = "particlebillboardheat.fx";

/// The layers of an old heat billboard, of a heat visualizer, and of one without heat.
Layer Old_Heat_Layer(const std::string &name = "shimmer");
Layer Heat_Layer(const std::string &name = "haze");
Layer Plain_Layer(const std::string &name = "flames");

/// An emitter with one group of these layers; count 0.
SmartPtr<vrMKParticleEmitter> Make_Emitter(const std::vector<Layer> &layers);
void Write_Emitter(const std::string &path, const std::vector<Layer> &layers);
void Write_Emitter(const std::string &path, vrMKParticleEmitter &emitter);
/// A chunk file whose root isn't an emitter's.
void Write_Model(const std::string &path);
/// Reads the file anew, apart from the tool.
SmartPtr<vrMKParticleEmitter> Read_Emitter(const std::string &path);
/// The level of a layer of the first group, as the file has it.
int Read_Level(const std::string &path, int layer = 0);

/// Takes every write permission away, or gives it to the owner.
void Set_Read_Only(const std::string &path, bool readOnly);

/// A working directory below a fresh one, which is the current directory for as long as it lives. Reports are
/// collected.
struct Workplace
{
    /// A path in Art/Models, where a scan looks.
    std::string Model_Path(const std::string &fileName) const { return directory / ("game/Art/Models/" + fileName); }
    void Add_Emitter(const std::string &fileName, const std::vector<Layer> &layers);
    void Bring_Up(ApplicationCore &core) const;

    MKTest::Reports reports;
    MKTest::TempDirectory directory;
    MKTest::CurrentDirectory currentDirectory{directory.Make_Directory("run")};
};

/// The tool at its place: a core that is up, with a headless main form.
class Tool : public Workplace
{
public:
    explicit Tool(std::unique_ptr<PreviewDriver> preview = std::make_unique<NoPreview>());

    /// Expects the scan to go well.
    void Scan();
    ParticleData &Row(int index) { return *form->Get_Particle_Data_Source().Get_Row(index); }
    int Row_Count() { return form->Get_Particle_Data_Source().Get_Count(); }
    void Select(std::vector<int> rows) { form->Get_Particle_Grid_View().Select_Rows(std::move(rows)); }
    /// The texts of the message boxes so far, in order.
    std::vector<std::string> Box_Texts() const;
    std::vector<std::string> Modified_Names() const;

    HeadlessApplication application;
    ApplicationCore core;
    std::unique_ptr<HeadlessMainForm> form;
};

} // namespace ToolTest
