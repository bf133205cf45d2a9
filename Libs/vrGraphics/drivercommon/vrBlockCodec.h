#pragma once

#include "vrGraphics/drivercommon/vrPicture2D.h"

/// The bytes of one block of 4 by 4 texels; 0 for a format without blocks.
int Get_Block_Bytes(vrPicture2D::FormatType format);

/// The texels of a block in rows from the top, four bytes each. Channels are spread to 8 bits by repeating their high
/// bits, and mixtures are rounded to the nearest.
void Decode_Block(vrPicture2D::FormatType format, const uint8_t *block, uint8_t (&texels)[64]);
