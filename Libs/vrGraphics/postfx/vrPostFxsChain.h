#pragma once

#include "vrGraphics/postfx/vrPostFx.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

class XMLDatabase;

/// The post-effects of a render, in the order in which they run: an XML file below `PostFxsChains\` of the driver's
/// post-effects path, whose steps are templates below `PostFxSteps\`.
class vrPostFxsChain
{
public:
    // What files may hold; beyond it, the read fails.
    static constexpr size_t MAX_EFFECTS = 64;
    static constexpr size_t MAX_STEPS = 64;  ///< an effect's
    static constexpr size_t MAX_PARAMS = 64; ///< a step's, or an effect's

    /// Reads a chain by file name; shaders and textures come from `driver`. False, with the reasons in the log, when
    /// something was amiss: what was read up to there stays.
    bool Load_Template(std::string_view fileName, vrGraphicsDriver &driver);
    const std::vector<std::unique_ptr<vrPostFx>> &Get_Effects() const { return Effects; }

private:
    // Readers of the element that the cursor stands on; it stands there again when they answer true.
    bool Load_PostFx(XMLDatabase &xml, vrPostFx &effect);
    bool Load_PostFx_Element(XMLDatabase &xml, vrPostFx &effect);
    bool Load_PostFxSteps(XMLDatabase &xml, vrPostFx &effect);
    bool Load_PostFxStep(XMLDatabase &xml, vrPostFx &effect, vrPostFxStep &step);
    bool Load_PostFxStep_Params(XMLDatabase &xml, vrPostFx &effect);
    bool Load_Step_Template(vrPostFxStep &step);
    bool Load_Step_Template_Params(XMLDatabase &xml, vrPostFxStep &step);
    bool Read_Value(XMLDatabase &xml, std::string &name, vrPostFxValue &value) const;

    std::vector<std::unique_ptr<vrPostFx>> Effects;
    vrGraphicsDriver *Driver = nullptr; ///< while a chain is read
};
