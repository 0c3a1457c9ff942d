#include "tarvix/common/CheckedArithmetic.h"

#include <gtest/gtest.h>

namespace Tarvix {

TEST(RoundTo, HalvesGoToTheEvenNeighbour)
{
    EXPECT_EQ(RoundTo<std::int32_t>(0.5), 0);
}

} // namespace Tarvix
