#include "tarvix/master/clsLIN.h"
#include "tarvix/script/clsLINScriptInterpreter.h"
#include "tests/support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

namespace Tarvix {

using namespace Testing;

namespace {

// Echoes, or lets a slave answer two bytes and the checksum; allocates nothing.
class QuietDevice : public FTDIMPSSE {
public:
    bool Answers = false;

    void ConfigurePins(std::uint8_t /*Levels*/, std::uint8_t /*Directions*/) override {}
    void SetOption(std::int32_t /*Option*/) override {}
    std::int32_t DivisorForFrequency(double /*Frequency*/) override { return 194; }
    void SetClockDivisor(std::int32_t /*Divisor*/) override {}
    double FrequencyForDivisor(std::int32_t /*Divisor*/) override { return 153846.0; }
    void SendSamples(std::span<const std::uint8_t> /*Samples*/, std::int32_t /*ByteCount*/, std::int32_t /*LSBFirst*/,
                     std::int32_t /*WriteEdge*/) override
    {
    }
    void ExchangeSamples(std::span<std::uint8_t> Samples, std::int32_t /*ByteCount*/, std::int32_t /*LSBFirst*/,
                         std::int32_t /*WriteEdge*/, std::int32_t /*ReadEdge*/) override
    {
        if (Answers) {
            // two zero bytes and the enhanced checksum for identifier 0x7D
            for (std::size_t Byte = 0; Byte < 3; ++Byte) {
                constexpr std::array<std::uint8_t, 3> Answer = {0x00, 0x00, 0x82};
                std::uint8_t* const Slot = &Samples[34 + 10 * Byte];
                std::memset(Slot, 0x00, 9);
                for (std::size_t k = 0; k < 8; ++k) {
                    Slot[1 + k] = (Answer[Byte] >> k & 1) != 0 ? 0xFF : 0x00;
                }
                Slot[9] = 0xFF;
            }
        }
    }
    void Close() override {}
};

void ExchangeEverything(clsLIN& Master, QuietDevice& Device)
{
    constexpr std::array<std::uint8_t, 8> Data = {1, 2, 3, 4, 5, 6, 7, 8};
    Master.WriteFrame(0x20, 8, Data);
    Master.WriteFrame(0x20, 2, Data, 0x17);
    EXPECT_FALSE(Master.ReadFrame(0x7D, 2));
    Device.Answers = true;
    EXPECT_TRUE(Master.ReadFrame(0x7D, 2));
    Device.Answers = false;
    Master.Wait(200);
    Master.GenerateBreak();
}

} // namespace

TEST(Allocations, NoneOnTheRoadOfAFrameOnceWarm)
{
    QuietDevice Device;
    clsLIN Master;
    Master.Initialize(Device);
    Master.BaudrateBd(19200);
    ExchangeEverything(Master, Device);
    const std::size_t Before = Allocations();
    for (int Round = 0; Round < 10; ++Round) {
        ExchangeEverything(Master, Device);
    }
    EXPECT_EQ(Allocations() - Before, 0U);
}

TEST(Allocations, AScriptNeedsAtMostFourTimesItsSize)
{
    QuietDevice Device;
    clsLIN Master;
    Master.Initialize(Device);
    clsLINScriptInterpreter Interpreter;
    Interpreter.Initialize(Master);
    const std::string Line = "WRITE_FRAME ID (20) LEN 8 TX (01 02 03 04 05 06 07 08); // a line like any other\r\n";
    constexpr std::size_t Size = 16 << 20;

    ResetPeak();
    const std::size_t Before = LiveBytes();
    std::string Script;
    Script.reserve(Size + Line.size());
    while (Script.size() < Size) {
        Script += Line;
    }
    for (int Run = 0; Run < 2; ++Run) { // the second one beside what the first one has left
        Interpreter.ExecuteScript(Script);
        EXPECT_LE(PeakBytes() - Before, 4 * Script.size());
    }
}

} // namespace Tarvix
