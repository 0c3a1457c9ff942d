#include "pellumo/common/FrameBytes.h"
#include "pellumo/simulation/SimulatedBus.h"
#include "tarvix/common/Error.h"
#include "tarvix/signalling/clsLINViaFTDIMPSSE.h"
#include "tests/support/BusDevice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

// How wrong a slave's clock may be until the commander cannot decode its answers any more.
//
// Take the sample period as the unit. A bit of the slave lasts b = 8 / (1 + clock error). Its start edge is found by
// the first sample read after it, that is d later, 0 <= d < 1, depending on where the edge falls. The stop bit is
// judged 76 samples after that one, at 76 + d after the edge, and must have begun by then and not be over:
//
//     9 b <= 76 + d        for every d:  b <= 76 / 9,  clock error >= -5.263 %
//     76 + d < 10 b        for every d:  b >= 7.7,     clock error <= +3.896 %   (when another byte follows at once)
//
// Every bit before the stop bit allows more. Between these limits every byte must be decoded wherever its edge falls;
// beyond them there are edges and bytes for which it cannot be. With the most favourable edge the limits are
// b <= 77 / 9 (-6.494 %) and b > 7.6 (+5.263 %); beyond those a byte is decoded only if it is slow and its upper two
// bits are 1, or fast and the last one.

namespace Pellumo::Testing {

namespace {

constexpr int SamplesPerBit = 8;
constexpr double SlowestDecoded = -5.2;
constexpr double SlowestNotAlways = -5.3;
constexpr double FastestDecoded = 3.8;
constexpr double FastestNotAlways = 4.0;
constexpr double SlowestSometimes = -6.6;
constexpr double FastestSometimes = 5.3;

/// A slave that sends every byte there is: identifier n carries the eight bytes from 8 n on.
SlaveDescription EveryByte(double ClockError, double ResponseSpace)
{
    SlaveDescription Slave{"slave", ClockError, ResponseSpace, {}};
    for (std::uint8_t Identifier = 0; Identifier < 32; ++Identifier) {
        FrameDescription Frame{.Identifier = Identifier};
        for (int k = 0; k < 8; ++k) {
            Frame.Data.push_back(static_cast<std::uint8_t>(Identifier * 8 + k));
        }
        Slave.Frames.push_back(Frame);
    }
    return Slave;
}

struct Outcome {
    int Right = 0;
    int Refused = 0; ///< an error, another number of bytes, or a wrong checksum
    int Wrong = 0;   ///< other data than was sent, and the checksum fits
};

void Count(Outcome& Sum, const FrameDescription& Sent, std::span<const std::uint8_t> Received)
{
    const std::uint8_t Identifier = ProtectedIdentifier(Sent.Identifier);
    const bool Complete = Received.size() == Sent.Data.size() + 1 &&
                          Received.back() == Checksum(Identifier, Received.first(Sent.Data.size()));
    if (!Complete) {
        ++Sum.Refused;
    } else if (std::equal(Sent.Data.begin(), Sent.Data.end(), Received.begin())) {
        ++Sum.Right;
    } else {
        ++Sum.Wrong;
    }
}

/// Asks for every byte, with the answer's start edge at `Phases` places within one sample.
Outcome ReadEverything(double ClockError, int Phases)
{
    Outcome Sum;
    for (int Phase = 0; Phase < Phases; ++Phase) {
        const double ResponseSpace = 1.0 + static_cast<double>(Phase) / (Phases * SamplesPerBit);
        const SlaveDescription Slave = EveryByte(ClockError, ResponseSpace);
        SimulatedBus Bus({.Slaves = {Slave}});
        BusDevice Device(Bus);
        Tarvix::clsLINViaFTDIMPSSE Engine;
        Engine.AttachDevice(Device);
        Engine.SetBitPeriod(1.0F / 19200);
        for (const FrameDescription& Frame : Slave.Frames) {
            std::array<std::uint8_t, 14> Received{};
            std::int32_t Length = 0;
            try {
                Engine.LINReceive(13 * SamplesPerBit, 0x55, ProtectedIdentifier(Frame.Identifier), Received, Length);
                Count(Sum, Frame, std::span(Received).first(static_cast<std::size_t>(Length)));
            } catch (const Tarvix::Error&) {
                ++Sum.Refused;
            }
        }
    }
    return Sum;
}

} // namespace

TEST(ClockError, IsToleratedAsFarAsSamplingAllows)
{
    constexpr int Fine = 64;
    for (const double ClockError : {SlowestDecoded, -3.0, 0.0, 2.0, FastestDecoded}) {
        EXPECT_EQ(ReadEverything(ClockError, Fine).Right, 32 * Fine) << ClockError;
    }
    for (const double ClockError : {SlowestNotAlways, FastestNotAlways}) {
        EXPECT_LT(ReadEverything(ClockError, Fine).Right, 32 * Fine) << ClockError;
    }
}

TEST(ClockError, EndsInAnErrorBeyondThatAndNeverInWrongData)
{
    constexpr int Coarse = 8;
    for (int Tenths = -80; Tenths <= 80; ++Tenths) {
        const double ClockError = Tenths / 10.0;
        const Outcome Sum = ReadEverything(ClockError, Coarse);
        EXPECT_EQ(Sum.Wrong, 0) << ClockError;
        if (ClockError >= SlowestDecoded && ClockError <= FastestDecoded) {
            EXPECT_EQ(Sum.Refused, 0) << ClockError;
        }
        if (ClockError <= SlowestSometimes || ClockError >= FastestSometimes) {
            EXPECT_GE(Sum.Refused, 24 * Coarse) << ClockError; // all but, perhaps, C0..FF
        }
    }
}

} // namespace Pellumo::Testing
