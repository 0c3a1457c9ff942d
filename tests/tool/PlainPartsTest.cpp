// Parts that stand alone: the progress bar, the table of chips, numbers as text.

#include "tools/tarvix/Commands.h"
#include "tools/tarvix/ProgressBar.h"
#include "tools/tarvix/Text.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <limits>
#include <string>

namespace Tarvix::Tool {

namespace {

using std::chrono::milliseconds;

TEST(ProgressBar, AppearsInLongRunsOnlyAndNotTooOften)
{
    const ProgressBar::TimePoint Start{};
    ProgressBar Bar(Start);
    EXPECT_EQ(Bar.Update(0.1, Start + milliseconds(999)), "");
    EXPECT_EQ(Bar.Clear(), "") << "nothing is there to be cleared";
    EXPECT_NE(Bar.Update(0.1, Start + milliseconds(1000)), "");
    EXPECT_EQ(Bar.Update(0.2, Start + milliseconds(1099)), "");
    EXPECT_NE(Bar.Update(0.2, Start + milliseconds(1100)), "");
    EXPECT_EQ(Bar.Clear(), "\r\x1B[K");
    EXPECT_EQ(Bar.Clear(), "");
}

TEST(ProgressBar, ShowsTheShare)
{
    const ProgressBar::TimePoint Late = ProgressBar::TimePoint{} + std::chrono::hours(1);
    EXPECT_EQ(ProgressBar({}).Update(0.0, Late), "\r[----------------------------------------]   0%");
    EXPECT_EQ(ProgressBar({}).Update(0.455, Late), "\r[##################----------------------]  45%");
    EXPECT_EQ(ProgressBar({}).Update(1.0, Late), "\r[########################################] 100%");
    EXPECT_EQ(ProgressBar({}).Update(1.1, Late), "\r[########################################] 100%");
}

TEST(DeviceTable, TellsWhatStandsInTheWay)
{
    const std::array Devices = {
        Pellumo::FoundDevice{"ftdi://ftdi:232h:FT1/1", "FT232H", "FT1", 1, false, ""},
        Pellumo::FoundDevice{"ftdi://ftdi:2232h/1", "FT2232H", "", 1, true, ""},
        Pellumo::FoundDevice{"ftdi://ftdi:2232h/2", "FT2232H", "", 2, false, "No permission. Install the udev rule."}};
    EXPECT_EQ(DeviceTable(Devices),
              "URL                     CHIP      STATE\n"
              "ftdi://ftdi:232h:FT1/1  FT232H    ready\n"
              "ftdi://ftdi:2232h/1     FT2232H   ready, a kernel driver holds the port; it is detached while the port "
              "is open\n"
              "ftdi://ftdi:2232h/2     FT2232H   not usable\n"
              "    No permission. Install the udev rule.\n");
}

TEST(Text, NumbersOfAllSizes)
{
    EXPECT_EQ(HexByte(0), "0x00");
    EXPECT_EQ(HexBytes({}), "");
    EXPECT_EQ(ErrorNumber(std::numeric_limits<std::int32_t>::min()), "0x80000000");
    EXPECT_EQ(ErrorNumber(-1), "0xFFFFFFFF");
    EXPECT_EQ(ErrorNumber(91), "91");
    EXPECT_EQ(Fixed(0.9999996, 6), "1.000000");
    EXPECT_EQ(Fixed(-0.0005, 3), "-0.001");
    EXPECT_EQ(Fixed(-0.0004, 3), "0.000");
    EXPECT_EQ(Fixed(std::numeric_limits<double>::max(), 6).size(), 316U);
}

} // namespace

} // namespace Tarvix::Tool
