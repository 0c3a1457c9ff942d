#include "tarvix/script/UnicodeText.h"

#include <gtest/gtest.h>

namespace Tarvix {

struct TextCase {
    std::string_view UTF8;
    std::u16string_view UTF16;
};

class UnicodeText : public testing::TestWithParam<TextCase> {};

TEST_P(UnicodeText, BecomesUTF16)
{
    EXPECT_EQ(UTF8ToUTF16(GetParam().UTF8), GetParam().UTF16);
}

using namespace std::string_view_literals;

INSTANTIATE_TEST_SUITE_P(
    WellFormed, UnicodeText,
    testing::Values(TextCase{"", u""}, TextCase{"WAIT 10;\r\n"sv, u"WAIT 10;\r\n"}, TextCase{"a\0b"sv, u"a\0b"sv},
                    TextCase{"\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"sv, u"\x7F\u0080\u07FF\u0800\uFFFF"sv},
                    TextCase{"\xED\x9F\xBF\xEE\x80\x80\xEF\xBB\xBF"sv, u"\uD7FF\uE000\uFEFF"sv},
                    TextCase{"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"sv, u"\U00010000\U0010FFFF"sv},
                    TextCase{"sixteen letters.\xC3\xA9nine more"sv, u"sixteen letters.\u00E9nine more"sv}));

// The examples of The Unicode Standard, tables 3-8 to 3-11, and the edges of the second byte's ranges.
INSTANTIATE_TEST_SUITE_P(
    IllFormed, UnicodeText,
    testing::Values(
        TextCase{"\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41"sv, u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\u0041"sv},
        TextCase{"\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41"sv, u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\u0041"sv},
        TextCase{"\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42"sv, u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\u0041\uFFFD\uFFFD\u0042"sv},
        TextCase{"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41"sv, u"\uFFFD\uFFFD\uFFFD\uFFFD\u0041"sv},
        TextCase{"\xC1\xBF\xF5\x80\xF0\x8F\xE0\x9F"sv, u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"sv},
        TextCase{"\xC3\xA9"sv.substr(0, 1), u"\uFFFD"sv}, TextCase{"a\xF0\x90\x80"sv, u"a\uFFFD"sv},
        TextCase{"\xE1\x80\xC3\xA9"sv, u"\uFFFD\u00E9"sv}, TextCase{"eightchr\xF4\x8F;"sv, u"eightchr\uFFFD;"sv}));

TEST(UnicodeText, FindsAStrayByteAnywhereInALongRunOfASCII)
{
    for (std::size_t k = 0; k < 20; ++k) {
        std::string UTF8(20, 'x');
        std::u16string UTF16(20, u'x');
        UTF8[k] = '\x80';
        UTF16[k] = u'\uFFFD';
        EXPECT_EQ(UTF8ToUTF16(UTF8), UTF16) << k;
    }
}

TEST(UnicodeText, ReadsBackEveryCodePoint)
{
    std::string UTF8;
    std::u16string UTF16;
    const auto Put = [&UTF8](char32_t Bits) { UTF8.push_back(static_cast<char>(Bits)); };
    for (char32_t Code = 0; Code <= 0x10FFFF; ++Code) {
        if (Code >= 0xD800 && Code <= 0xDFFF) {
            continue;
        }
        if (Code < 0x80) {
            Put(Code);
        } else if (Code < 0x800) {
            Put(0xC0 + Code / 64);
            Put(0x80 + Code % 64);
        } else if (Code < 0x10000) {
            Put(0xE0 + Code / 4096);
            Put(0x80 + Code / 64 % 64);
            Put(0x80 + Code % 64);
        } else {
            Put(0xF0 + Code / 262144);
            Put(0x80 + Code / 4096 % 64);
            Put(0x80 + Code / 64 % 64);
            Put(0x80 + Code % 64);
        }
        if (Code < 0x10000) {
            UTF16.push_back(static_cast<char16_t>(Code));
        } else {
            UTF16.push_back(static_cast<char16_t>(0xD800 + (Code - 0x10000) / 1024));
            UTF16.push_back(static_cast<char16_t>(0xDC00 + Code % 1024));
        }
    }
    const std::u16string Converted = UTF8ToUTF16(UTF8);
    EXPECT_TRUE(Converted == UTF16);
    EXPECT_EQ(Converted.capacity(), Converted.size());
}

} // namespace Tarvix
