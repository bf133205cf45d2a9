#include "TextureMaker/ParticleSheet.h"

#include "TextureMaker/Shapes.h"

namespace TextureMaker
{

namespace
{

constexpr int CELLS = 8;
constexpr int SHEET_SIDE = 1024;
constexpr int NORMALS_SIDE = 512;

Texel Shade_Cell(int row, int column, float x, float y)
{
    switch (row) {
    case 0: return Shade_Light(column, x, y);
    case 1: return Shade_Puff(column, x, y);
    case 2:
    case 3: return Shade_Flame((row - 2) * CELLS + column, x, y);
    case 4:
    case 5: return Shade_Fireball((row - 4) * CELLS + column, x, y);
    case 6: return Shade_Water(column, x, y);
    default: return Shade_Debris(column, x, y);
    }
}

Texel Shade_Cell_Normal(int row, int column, float x, float y)
{
    if (row == 1) {
        const auto height = [column](float atX, float atY) { return Get_Puff_Height(column, atX, atY); };
        return Get_Normal(height, x, y, 0.9f);
    }
    if (row == 4 || row == 5) {
        const int frame = (row - 4) * CELLS + column;
        const auto height = [frame](float atX, float atY) { return Get_Fireball_Height(frame, atX, atY); };
        return Get_Normal(height, x, y, 0.7f);
    }
    return {0.5f, 0.5f, 1.0f, 1.0f};
}

/// Smoke and fire are soft, and dear to paint.
int Get_Samples(int row)
{
    return row == 1 || row == 4 || row == 5 ? 2 : 3;
}

template <typename Shade>
Canvas Make_Sheet(int side, Shade &&shade)
{
    Canvas sheet(side, side);
    const int cell = side / CELLS;
    for (int row = 0; row < CELLS; ++row)
        for (int column = 0; column < CELLS; ++column)
            sheet.Paint({column * cell, row * cell, cell, cell}, Get_Samples(row),
                        [&](float x, float y) { return shade(row, column, x, y); });
    return sheet;
}

} // namespace

Canvas Make_Particle_Sheet()
{
    return Make_Sheet(SHEET_SIDE, [](int row, int column, float x, float y) {
        Texel texel = Shade_Cell(row, column, x, y);
        texel.Alpha = Limit(texel.Alpha) * Inside_Cell(x, y);
        return texel;
    });
}

Canvas Make_Smoke_Normals()
{
    return Make_Sheet(NORMALS_SIDE, Shade_Cell_Normal);
}

} // namespace TextureMaker
