#include "vro/TextEncoding.h"

#include <gtest/gtest.h>

using namespace vro;

TEST(TextEncoding, KnowsWellFormedUtf8)
{
    const struct
    {
        const char *what;
        std::string bytes;
        bool isValid;
    } texts[] = {
        {"ASCII with a zero byte", std::string("a\0b", 3), true},
        {"two, three and four bytes", "\xc3\xa9\xe2\x82\xac\xf0\x9f\x94\xa5", true},
        {"the last code point", "\xf4\x8f\xbf\xbf", true},
        {"past the last code point", "\xf4\x90\x80\x80", false},
        {"a stray continuation", "\x80", false},
        {"a sequence cut short", "\xe2\x82", false},
        {"an overlong slash", "\xc0\xaf", false},
        {"a surrogate", "\xed\xa0\x80", false},
        {"a byte that starts nothing", "\xf8\x88\x80\x80\x80", false},
    };
    for (const auto &text : texts) EXPECT_EQ(Is_Valid_Utf8(text.bytes), text.isValid) << text.what;
}

TEST(TextEncoding, EveryByteHasACharacterOfItsOwn)
{
    std::string all;
    for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
    const std::string text = Windows_1252_To_Utf8(all);
    EXPECT_TRUE(Is_Valid_Utf8(text));
    std::string back;
    ASSERT_TRUE(Utf8_To_Windows_1252(text, back));
    EXPECT_EQ(back, all);
}
