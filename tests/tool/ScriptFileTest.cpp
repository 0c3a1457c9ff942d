#include "tools/tarvix/ScriptFile.h"

#include "tools/tarvix/ExitStatus.h"

#include <gtest/gtest.h>

#include <string>

namespace Tarvix::Tool {

namespace {

using namespace std::string_literals;

struct DecodingCase {
    std::string Name;
    std::string Bytes;
    std::u16string Text;
};

class Decoding : public testing::TestWithParam<DecodingCase> {};
TEST_P(Decoding, GivesTheText)
{
    EXPECT_EQ(DecodeScript(GetParam().Bytes), GetParam().Text);
}
INSTANTIATE_TEST_SUITE_P(
    Each, Decoding,
    testing::Values(DecodingCase{"Empty", "", u""}, DecodingCase{"ASCII", "BREAK;\r\n", u"BREAK;\r\n"},
                    DecodingCase{"Mark",
                                 "\xEF\xBB\xBF"
                                 "A",
                                 u"A"},
                    DecodingCase{"SecondMarkIsText", "\xEF\xBB\xBF\xEF\xBB\xBF", u"\uFEFF"},
                    DecodingCase{"TwoBytes", "\xC2\x80\xC3\xBC\xDF\xBF", u"\u0080\u00FC\u07FF"},
                    DecodingCase{"ThreeBytes", "\xE0\xA0\x80\xE2\x82\xAC\xEF\xBF\xBF", u"\u0800\u20AC\uFFFF"},
                    DecodingCase{"FourBytes", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\U00010000\U0010FFFF"},
                    DecodingCase{"Latin1", "T\xFCr", u"T\uFFFDr"},
                    DecodingCase{"Overlong",
                                 "\xC0\xAF"
                                 "a\xE0\x9F\xBF",
                                 u"\uFFFD\uFFFDa\uFFFD\uFFFD\uFFFD"},
                    DecodingCase{"Surrogate", "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
                    DecodingCase{"BeyondUnicode", "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
                    DecodingCase{"CutShort", "a\xE2\x82", u"a\uFFFD\uFFFD"},
                    DecodingCase{"LittleEndian",
                                 "\xFF\xFE"
                                 "A\0\xAC\x20"s,
                                 u"A\u20AC"},
                    DecodingCase{"BigEndian", "\xFE\xFF\0A\x20\xAC"s, u"A\u20AC"},
                    DecodingCase{"HalfAUnit",
                                 "\xFF\xFE"
                                 "A\0B"s,
                                 u"A\uFFFD"}),
    [](const auto& Info) { return Info.param.Name; });

TEST(ToUTF8, IsTheWayBack)
{
    const std::string Text = "a\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
    EXPECT_EQ(ToUTF8(DecodeScript(Text)), Text);
}

TEST(ToUTF8, LoneSurrogatesAreReplaced)
{
    const std::u16string Lone = {0xD800, u'a', 0xDC00, 0xD800};
    EXPECT_EQ(ToUTF8(Lone), "\xEF\xBF\xBD"
                            "a\xEF\xBF\xBD\xEF\xBF\xBD");
}

} // namespace

} // namespace Tarvix::Tool
