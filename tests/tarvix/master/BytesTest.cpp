// Checksums and variants of byte arrays that are shorter than they should be.

#include "tarvix/master/Checksums.h"
#include "tarvix/master/VariantBytes.h"
#include "tests/support/Errors.h"

#include <gtest/gtest.h>

#include <array>

namespace Tarvix {

using namespace Testing;

namespace {

constexpr std::array<std::uint8_t, 2> Bytes = {0x12, 0x34};

} // namespace

TEST(Bytes, AreCountedBeforeTheyAreSummedOrCopied)
{
    EXPECT_EQ(FailureOf([] { ClassicChecksum(3, Bytes); }), IndexOutOfRange);
    EXPECT_EQ(FailureOf([] { EnhancedChecksum(0x7D, 3, Bytes); }), IndexOutOfRange);
    EXPECT_EQ(FailureOf([] { BytesToVariant(Bytes, 3); }), IndexOutOfRange);
    EXPECT_EQ(FailureOf([] { VariantToBytes(Variant::FromBytes(Bytes), 3); }), IndexOutOfRange);
}

TEST(Bytes, AreNoneForALengthBelowOne)
{
    for (const std::int32_t Length : {0, -1}) {
        EXPECT_EQ(ClassicChecksum(Length, Bytes), 0xFF);
        EXPECT_EQ(EnhancedChecksum(0x7D, Length, Bytes), 0x82);
        EXPECT_EQ(BytesToVariant(Bytes, Length), Variant(Variant::Array{}));
        EXPECT_TRUE(VariantToBytes("no array", Length).empty());
    }
}

TEST(Bytes, AreSummedWithTheCarryAddedAgain)
{
    EXPECT_EQ(ClassicChecksum(2, Bytes), 0xB9);
    EXPECT_EQ(EnhancedChecksum(0x7D, 2, Bytes), 0x3C);
    EXPECT_EQ(EnhancedChecksum(0xFF, 1, std::array<std::uint8_t, 1>{0x00}), 0x00) << "255 is no carry";
    EXPECT_EQ(ClassicChecksum(2, std::array<std::uint8_t, 2>{0xFF, 0x01}), 0xFE);
}

} // namespace Tarvix
