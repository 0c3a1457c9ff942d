#include "tarvix/common/Variant.h"

#include "tarvix/common/Formating.h"
#include "tests/support/Errors.h"

#include <gtest/gtest.h>

#include <limits>

namespace Tarvix {

using namespace Testing;

TEST(Variant, BecomesAByteWhenItIsNumericAndFits)
{
    struct Case {
        Variant Value;
        int Byte = 0;
    };
    for (const auto& [Value, Byte] : {Case{0, 0},
                                      {255LL, 255},
                                      {std::uint8_t{7}, 7},
                                      {'A', 65},
                                      {254.5, 254},
                                      {0.5F, 0},
                                      {-0.5, 0},
                                      {1.5, 2},
                                      {"12", 12},
                                      {"  +2.5e1  ", 25},
                                      {" .5", 0},
                                      {"-0.4", 0},
                                      {std::string("25500e-2"), 255}}) {
        EXPECT_EQ(Value.ToByte(), Byte);
    }
    for (const Variant& Value :
         {Variant(-1), Variant(256), Variant(255.5), Variant(-0.51), Variant("256"), Variant("-1"), Variant("1e400"),
          Variant(std::numeric_limits<std::uint64_t>::max()), Variant(std::numeric_limits<std::int64_t>::min()),
          Variant(std::numeric_limits<double>::quiet_NaN()), Variant(std::numeric_limits<double>::infinity())}) {
        EXPECT_EQ(FailureOf([&] { Value.ToByte(); }), Overflow) << Value.ToText();
    }
    for (const Variant& Value :
         {Variant(), Variant(""), Variant(" "), Variant("x"), Variant("nan"), Variant("inf"), Variant("0x10"),
          Variant("1 2"), Variant("1,5"), Variant("\t1"), Variant("+-1"), Variant("- 1"), Variant(Variant::Array{1})}) {
        EXPECT_EQ(FailureOf([&] { Value.ToByte(); }), TypeMismatch);
    }
}

TEST(Variant, KnowsItsKind)
{
    EXPECT_TRUE(Variant().IsEmpty());
    EXPECT_FALSE(Variant(0).IsEmpty());
    EXPECT_TRUE(Variant(std::uint8_t{1}).IsByte());
    EXPECT_FALSE(Variant(1).IsByte());
    EXPECT_TRUE(Variant(Variant::Array{}).IsArray());
    EXPECT_EQ(FailureOf([] { Variant("text").Elements(); }), TypeMismatch);
    const std::uint8_t Bytes[] = {1, 2};
    EXPECT_EQ(Variant::FromBytes(Bytes), Variant(Variant::Array{1, 2}));
    EXPECT_NE(Variant::FromBytes(Bytes), Variant(Variant::Array{2, 1}));
    EXPECT_NE(Variant(std::numeric_limits<std::uint64_t>::max()), Variant(-1));
    EXPECT_NE(Variant(1), Variant(1.0));
}

TEST(Variant, MayBecomeItsOwnElement)
{
    Variant Value = Variant::Array{Variant::Array{9}, 1};
    Value = Value.Elements()[0];
    EXPECT_EQ(Value, Variant(Variant::Array{9}));
    Value = Value.Elements()[0];
    EXPECT_EQ(Value, Variant(9));
}

TEST(Variant, WritesWholeNumbersAsPlainDigits)
{
    EXPECT_EQ(Variant(std::numeric_limits<std::int64_t>::min()).ToText(), "-9223372036854775808");
    EXPECT_EQ(Variant(std::numeric_limits<std::uint64_t>::max()).ToText(), "18446744073709551615");
    EXPECT_EQ(Variant(std::uint8_t{65}).ToText(), "65");
    EXPECT_EQ(Variant(2.5).ToText(), "2.5");
    EXPECT_EQ(Variant(1e6).ToText(), "1000000");
    EXPECT_EQ(Variant(-0.0).ToText(), "0");
    EXPECT_EQ(Variant(0x1p53).ToText(), "9007199254740992");
    EXPECT_EQ(Variant(1e300).ToText(), "1e+300");
    EXPECT_EQ(Variant("x").ToText(), "x");
    EXPECT_EQ(Variant().ToText(), "");
    EXPECT_EQ(FailureOf([] { Variant(Variant::Array{}).ToText(); }), TypeMismatch);
}

TEST(FormatText, FillsPlaceholdersInNumberOrder)
{
    EXPECT_EQ(FormatText("Unexpected length of response (%1 bytes)", {4}), "Unexpected length of response (4 bytes)");
    EXPECT_EQ(FormatText("%2 %1 %1", {"a", "b"}), "b a a");
    EXPECT_EQ(FormatText("%1", {"%2", "x"}), "x") << "what a value brings in is searched by the later ones";
    EXPECT_EQ(FormatText("%2", {"x", "%1"}), "%1") << "but not by the earlier ones";
    EXPECT_EQ(FormatText("%1", {"%1"}), "%1");
    EXPECT_EQ(FormatText("%3 %", {1, 2}), "%3 %") << "a placeholder without a value stays";
    EXPECT_EQ(FormatText("%10", {7}), "70") << "%1 is found first, and the 0 stays";
    EXPECT_EQ(FormatText("none", {1, 2}), "none");
}

} // namespace Tarvix
