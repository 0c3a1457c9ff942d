#include "pellumo/recording/VCDWriter.h"

#include "tests/pellumo/recording/StreamRecord.h"
#include "tests/support/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <locale>
#include <map>
#include <optional>
#include <sstream>

namespace Pellumo::Testing {

using Tarvix::Testing::Random;

namespace {

const std::string Head = "$timescale 100 ns $end\n$scope module lin $end\n$var wire 1 ! tx $end\n"
                         "$var wire 1 \" rx $end\n$upscope $end\n$enddefinitions $end\n"
                         "#0\n$dumpvars\n1!\n1\"\n$end\n";

std::string FileOf(std::initializer_list<SampleStream> Streams)
{
    std::ostringstream Out;
    VCDWriter Writer(Out);
    for (const SampleStream& Stream : Streams) {
        Writer.OnStream(Stream);
    }
    Writer.Finish();
    return Out.str();
}

/// The moments at which each wire changed, and the last one of all.
struct Parsed {
    std::map<char, std::vector<std::int64_t>> Edges;
    std::int64_t End = 0;

    explicit Parsed(const std::string& File)
    {
        std::map<char, char> Level{{'!', '1'}, {'"', '1'}};
        std::istringstream Lines(File.substr(Head.size()));
        EXPECT_EQ(File.substr(0, Head.size()), Head);
        for (std::string Line; std::getline(Lines, Line);) {
            if (Line[0] == '#') {
                const std::int64_t Moment = std::stoll(Line.substr(1));
                EXPECT_GT(Moment, End) << "time goes on";
                End = Moment;
            } else {
                EXPECT_EQ(Line.size(), 2U);
                EXPECT_NE(Line[0], Level[Line[1]]) << "only changes";
                Level[Line[1]] = Line[0];
                Edges[Line[1]].push_back(End);
            }
        }
    }
};

} // namespace

TEST(VCDWriter, WritesChangesOnlyBetweenIdleTimes)
{
    // A sample lasts 125 units; the first one begins after 2 idle bits of 1000 units.
    const Bytes Tx{0xFF, 0x0F, 0xFF};
    const Bytes Rx{0xFF, 0x1F, 0xFF};
    EXPECT_EQ(FileOf({Exchanged(Tx, Rx)}), Head + "#3500\n0!\n#3625\n0\"\n#4000\n1!\n1\"\n#28000\n");
    EXPECT_EQ(FileOf({Sent({0x00, 0x00, 0xFF})}), Head + "#2000\n0!\n0\"\n#4000\n1!\n1\"\n#28000\n");
    EXPECT_EQ(FileOf({Sent({0xFF})}), Head + "#3000\n") << "no change at all";
    EXPECT_EQ(FileOf({}), Head + "#1\n") << "time goes on";
    Bytes Long(40, 0xFF);
    Long[0] = 0xFE;
    EXPECT_EQ(FileOf({Sent(Long)}), Head + "#2000\n0!\n0\"\n#2125\n1!\n1\"\n#42000\n") << "longer than 24 bits";
}

TEST(VCDWriter, CarriesLevelsFromStreamToStream)
{
    const Bytes Low{0x00};
    const Bytes High{0xFF};
    SampleStream Second = Sent(Low);
    Second.FirstSample = 8;
    SampleStream Third = Sent(High);
    Third.FirstSample = 16;
    EXPECT_EQ(FileOf({Sent(Low), Second, Third}), Head + "#2000\n0!\n0\"\n#4000\n1!\n1\"\n#28000\n");
}

TEST(VCDWriter, FollowsClockChangesAndLeavesOutWhatHasNoClock)
{
    const Bytes Low{0x00};
    const Bytes High{0xFF};
    const SampleStream NoClock{Low, Low, false, 0.0, 0.0, 0};
    const SampleStream Fast{Low, Low, false, 160e3, 1.0, 0};
    const SampleStream Slow{High, High, false, 80e3, 1.00005, 0};
    EXPECT_EQ(FileOf({NoClock, Fast, Slow}), Head + "#10001000\n0!\n0\"\n#10001500\n1!\n1\"\n#10025500\n");
}

TEST(VCDWriter, IsIdleForTwoBitTimesOfTheFirstChange)
{
    const Bytes Low{0x00};
    const Bytes High{0xFF};
    const SampleStream Fast{High, High, false, 800e3, 0.0, 0};
    const SampleStream Slow{Low, Low, false, 8e3, 0.00001, 0};
    EXPECT_EQ(FileOf({Fast, Slow}), Head + "#20100\n0!\n0\"\n#260100\n");
}

TEST(VCDWriter, RoundingNeverAddsUp)
{
    const Bytes Low{0x00};
    const Bytes High{0xFF};
    const double Frequency = 30e6 / 195; // 65 units a sample, exactly: 10 000 000 / 153846.15
    SampleStream Late{Low, Low, false, Frequency, 0.0, 8'000'000'000};
    SampleStream After{High, High, false, Frequency, 0.0, 8'000'000'008};
    EXPECT_EQ(FileOf({Late, After}), Head + "#520000001040\n0!\n0\"\n#520000001560\n1!\n1\"\n#520000014040\n");
}

TEST(VCDWriter, SharesMomentsWhenSamplesAreShorterThanTheUnit)
{
    const Bytes Samples{0x55, 0xFF};
    const Parsed File(FileOf({{Samples, Samples, false, 30e6, 0.0, 0}}));
    EXPECT_EQ(File.Edges.at('!').size(), 8U);
}

TEST(VCDWriter, ShowsEveryEdgeOfRandomStreams)
{
    Random Numbers;
    std::ostringstream Out;
    VCDWriter Writer(Out);
    std::map<char, std::vector<std::int64_t>> Expected;
    std::map<char, int> Level{{'!', 1}, {'"', 1}};
    double Epoch = 0.0;
    std::int64_t First = 0;
    double Frequency = 153846.0;
    for (int i = 0; i < 300; ++i) {
        Bytes Tx(static_cast<std::size_t>(Numbers.Between(0, 40)));
        Bytes Rx(Tx.size());
        std::ranges::generate(Tx, [&] { return Numbers.Between(0, 2) == 0 ? Numbers.Byte() : std::uint8_t{0xFF}; });
        std::ranges::generate(Rx, [&] { return Numbers.Between(0, 2) == 0 ? Numbers.Byte() : std::uint8_t{0x00}; });
        const SampleStream Stream{Tx, Rx, true, Frequency, Epoch, First};
        Writer.OnStream(Stream);
        for (const auto& [Code, Samples] : {std::pair{'!', &Tx}, std::pair{'"', &Rx}}) {
            for (std::size_t n = 0; n < 8 * Samples->size(); ++n) {
                const int Now = (*Samples)[n / 8] >> n % 8 & 1;
                if (Now != Level[Code]) {
                    const double Seconds =
                        Epoch + static_cast<double>(First + static_cast<std::int64_t>(n)) / Frequency;
                    Expected[Code].push_back(static_cast<std::int64_t>(std::ceil(16e7 / 153846.0)) +
                                             std::llround(Seconds * 1e7));
                }
                Level[Code] = Now;
            }
        }
        First += Stream.Samples();
        if (i % 50 == 49) {
            Epoch = Stream.Seconds(Stream.Samples());
            First = 0;
            Frequency = Numbers.Between(8000, 160000);
        }
    }
    Writer.Finish();
    const Parsed File(Out.str());
    EXPECT_EQ(File.Edges, Expected);
    EXPECT_GT(Expected['!'].size(), 5000U);
}

TEST(VCDWriter, EndsOnceAndInItsDestructorIfNeedBe)
{
    const Bytes Low{0x00};
    std::ostringstream Out;
    {
        VCDWriter Writer(Out);
        Writer.OnStream(Sent(Low));
    }
    EXPECT_EQ(Out.str(), Head + "#2000\n0!\n0\"\n#26000\n");

    std::ostringstream Again;
    VCDWriter Writer(Again);
    Writer.Finish();
    Writer.Finish();
    Writer.OnStream(Sent(Low));
    EXPECT_EQ(Again.str(), Head + "#1\n");
}

TEST(VCDWriter, DestructorSwallowsAFailure)
{
    struct Full : std::streambuf {};
    Full Nowhere;
    std::ostringstream Out;
    auto Writer = std::make_optional<VCDWriter>(Out);
    static_cast<std::ios&>(Out).rdbuf(&Nowhere);
    Out.exceptions(std::ios::badbit);
    EXPECT_NO_THROW(Writer.reset());
    EXPECT_TRUE(Out.bad());
}

TEST(VCDWriter, WritesTheSameUnderEveryLocale)
{
    struct Grouping : std::numpunct<char> {
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    std::ostringstream Out;
    Out.imbue(std::locale(std::locale::classic(),
                          new Grouping)); // NOLINT(cppcoreguidelines-owning-memory): the locale owns it
    const Bytes Low{0x00};
    VCDWriter Writer(Out);
    Writer.OnStream(Sent(Low));
    Writer.Finish();
    EXPECT_EQ(Out.str(), Head + "#2000\n0!\n0\"\n#26000\n");
}

TEST(GTKWaveSave, ShowsBothWires)
{
    EXPECT_EQ(GTKWaveSaveFile("out/bus.vcd"), "[dumpfile] \"out/bus.vcd\"\n[timestart] 0\n@28\nlin.tx\nlin.rx\n");
}

} // namespace Pellumo::Testing
