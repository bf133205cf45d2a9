#pragma once

/// What both views of a scene do alike, the tool's preview and the pictures of `vro render`. The main thread's.

#include "Code/PreviewDriver.h"
#include "MKLib/MKMath/Vectors.h"

class vrCamera;
class vrTexture;

PreviewPaths Get_Preview_Paths(const std::string &workingDirectory);
/// Replaces the driver's search paths.
void Apply_Preview_Paths(const PreviewPaths &paths);

/// Sets the states that a scene with particles is drawn in.
void Prepare_Scene_Driver();
/// The renderer with a light field where the driver has it.
void Choose_Scene_Renderer();
/// The field of view and the depths of a view. `aspect` is width over height.
void Set_Scene_Lens(vrCamera &camera, float aspect);

/// Opens a frame with nothing but a colour in it.
void Begin_Scene_Frame(vrCamera &camera, const RGBAClass &color);
/// Fills the frame with a picture.
void Draw_Scene_Background(vrTexture &picture);
/// Lets go of what frames have handed to the driver; ahead of its end.
void Release_Scene_Textures();
