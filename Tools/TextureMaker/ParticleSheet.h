#pragma once

#include "TextureMaker/Canvas.h"

namespace TextureMaker
{

/// The sheet that most billboards share: 8 by 8 cells, each empty along its border.
Canvas Make_Particle_Sheet();
/// Normals for the same cells: those of the puffs of smoke and of what else has a body; flat elsewhere.
Canvas Make_Smoke_Normals();

/// A heap of balls, bent by noise, within 0.95 of the middle: how high its surface stands above the picture, 0 beside
/// it.
float Get_Heap_Height(uint32_t seed, float x, float y);

// Cells of the sheet, by row. Places within a cell run from -1 to 1, y upward.

/// Row 0: soft glow, spark, star flare, ring, streak, rain streak, snowflake, flake of ash.
Texel Shade_Light(int cell, float x, float y);
/// Row 1: eight puffs of smoke.
Texel Shade_Puff(int cell, float x, float y);
float Get_Puff_Height(int cell, float x, float y);
/// Rows 2 and 3: sixteen frames of a flame, the last of which leads to the first.
Texel Shade_Flame(int frame, float x, float y);
/// Rows 4 and 5: sixteen frames of a fireball, from the flash to the last smoke.
Texel Shade_Fireball(int frame, float x, float y);
float Get_Fireball_Height(int frame, float x, float y);
/// Row 6: a crown, three clumps of drops, two patches of foam, two banks of mist.
Texel Shade_Water(int cell, float x, float y);
/// Row 7: three chips of rock, a shell casing, two runes, a moth with its wings open and closed.
Texel Shade_Debris(int cell, float x, float y);

} // namespace TextureMaker
