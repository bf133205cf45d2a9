#include "vro/OffscreenView.h"

#include "vro/RenderOptions.h"

#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/drivercommon/vrTexture.h"

/// Stands in a build without OpenGL.
namespace vro
{

struct OffscreenView::Device
{
};

std::unique_ptr<OffscreenView> OffscreenView::Open(const RenderOptions &, const std::string &, std::string &error)
{
    error = "this vro was built without OpenGL";
    return nullptr;
}

OffscreenView::~OffscreenView() = default;

void OffscreenView::Furnish(vrSimpleScene &) const
{
}

bool OffscreenView::Draw(vrSimpleScene &, std::vector<uint8_t> &, std::string &)
{
    return false;
}

std::string OffscreenView::Describe() const
{
    return {};
}

} // namespace vro
