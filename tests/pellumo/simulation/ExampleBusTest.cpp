#include "pellumo/simulation/ExampleBus.h"

#include "pellumo/common/FrameBytes.h"
#include "pellumo/simulation/BusFile.h"
#include "tests/pellumo/simulation/Exchanges.h"

#include <gtest/gtest.h>

namespace Pellumo::Testing {

namespace {

BusDescription Example(const char* Name)
{
    return ReadBusFile(std::string(EXAMPLES_FOLDER "/").append(Name));
}

} // namespace

TEST(ExampleBus, IsTheOneOfTheExampleFile)
{
    CommanderStream Stream;
    Stream.Frame(Protected20, {0x01, 0x02, 0xDC}).Frame(0xE2, {0x03, 0x1A});
    for (std::uint8_t Identifier = 0; Identifier <= 0x3F; ++Identifier) {
        Stream.Request(ProtectedIdentifier(Identifier));
    }
    SimulatedBus BuiltIn(ExampleBus());
    SimulatedBus FromFile(Example("car.toml"));
    EXPECT_EQ(Exchange(BuiltIn, Stream), Exchange(FromFile, Stream));
}

TEST(ExampleBus, AnswersAsItsReadersExpect)
{
    SimulatedBus Bus(ExampleBus());
    EXPECT_EQ(Read(Bus, Protected3D), DoorAnswer);
    Exchange(Bus, CommanderStream().Frame(Protected20, {0x01, 0x02, 0xDC}));
    EXPECT_EQ(Read(Bus, Protected21), (Decoded{{0x01, 0x02, 0x9B}}));
    EXPECT_EQ(Read(Bus, 0x11), (Decoded{{0x5A, 0xA5}})) << "classic checksum";

    const auto Answers = [&Bus](std::uint8_t Identifier) {
        return !Read(Bus, ProtectedIdentifier(Identifier)).Received.empty();
    };
    std::vector<int> Answered;
    for (std::uint8_t Identifier = 0; Identifier <= 0x3F; ++Identifier) {
        if (Answers(Identifier)) {
            Answered.push_back(Identifier);
        }
    }
    EXPECT_EQ(Answered, (std::vector<int>{0x05, 0x11, 0x21, 0x30, 0x3D})) << "0x23 has nothing to copy yet";
}

TEST(FaultyExample, MakesEveryKindOfTrouble)
{
    SimulatedBus Bus(Example("faulty.toml"));
    const auto ReadFrame = [&Bus](std::uint8_t Identifier) { return Read(Bus, ProtectedIdentifier(Identifier)); };
    const Bytes Data{0x11, 0x22};
    const auto WithChecksum = [&Data](std::uint8_t Identifier) {
        return Decoded{{0x11, 0x22, Checksum(ProtectedIdentifier(Identifier), Data)}};
    };
    EXPECT_TRUE(ReadFrame(0x01).FramingError);
    EXPECT_EQ(ReadFrame(0x02).Received.size(), 3U);
    EXPECT_NE(ReadFrame(0x02), WithChecksum(0x02));
    EXPECT_EQ(ReadFrame(0x03), Decoded{Data});
    EXPECT_EQ(ReadFrame(0x04).Received.size(), 5U);
    EXPECT_EQ(ReadFrame(0x05), (Decoded{{0x10, 0x6A}}));
    EXPECT_EQ(ReadFrame(0x05), WithChecksum(0x05));
    EXPECT_NE(ReadFrame(0x06), WithChecksum(0x06));
    EXPECT_TRUE(ReadFrame(0x07).FramingError);
    const Bytes In = Exchange(Bus, CommanderStream().Frame(Protected20, {0x01, 0x02, 0xDC}));
    EXPECT_EQ(Decode(In, CommanderStream::HeaderSamples), Silence);
}

} // namespace Pellumo::Testing
