#pragma once

#include "TextureMaker/Canvas.h"

namespace TextureMaker
{

/// 2 by 2 cells for heat: two plumes above, a drop and a ring below. Red and green say whereto the picture is shifted,
/// to the right and upward, with 128 for not at all; blue is saturation, 128 for what it was; alpha is how much of it.
Canvas Make_Heat_Sheet();

// For chains and beams: the length runs along the width of the picture and repeats.

Canvas Make_Clouds();
Canvas Make_Trail();
/// Four frames, one above the other.
Canvas Make_Beam();
/// Strewn streaks, which repeat in both directions.
Canvas Make_Glints();

// One that fills a quad each.

Canvas Make_Rune_Circle();
Canvas Make_Swirl();
/// A wave front, larger than the sheet's.
Canvas Make_Ring();
Canvas Make_Bubble();
Canvas Make_Leaf();

/// A road through a desert, to stand behind effects that bend what is seen through them.
Canvas Make_Backdrop();

} // namespace TextureMaker
