#include "vro/ContactSheet.h"

#include <gtest/gtest.h>

using vro::ContactSheet;

namespace
{

std::vector<uint8_t> Plain(int width, int height, uint8_t value)
{
    return std::vector<uint8_t>(static_cast<size_t>(width * height) * 4, value);
}

int At(const ContactSheet &sheet, int x, int y)
{
    return sheet.Get_Pixels()[static_cast<size_t>(y * sheet.Get_Width() + x) * 4];
}

} // namespace

TEST(ContactSheet, CellsStandInRowsWithALabelBelowEach)
{
    // A pixel between columns, and a label of 13 rows below each row of cells.
    ContactSheet sheet(2, 3, 30, 20);
    EXPECT_EQ(sheet.Get_Width(), 30 + 1 + 30);
    EXPECT_EQ(sheet.Get_Height(), 2 * (20 + 13));
    for (const uint8_t value : {100, 150, 200}) sheet.Add(Plain(30, 20, value), "");
    EXPECT_EQ(At(sheet, 0, 0), 100);
    EXPECT_EQ(At(sheet, 60, 19), 150);
    EXPECT_EQ(At(sheet, 29, 52), 200);
    const int paper = At(sheet, 30, 0);
    EXPECT_EQ(At(sheet, 0, 20), paper);
    EXPECT_EQ(At(sheet, 40, 40), paper) << "the place of a fourth";
}

TEST(ContactSheet, ALabelStaysWithinItsCell)
{
    for (const int width : {1, 9, 14}) {
        ContactSheet sheet(2, 2, width, 2);
        sheet.Add(Plain(width, 2, 20), "88888");
        for (int y = 0; y < sheet.Get_Height(); ++y)
            for (int x = width; x < sheet.Get_Width(); ++x) EXPECT_EQ(At(sheet, x, y), 20) << x << " " << y;
    }
}
