// What was recorded, run again, gives the same samples on the bus.

#include "tests/support/Random.h"
#include "tests/tool/Program.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace Tarvix::Testing {

namespace {

/// Writes sessions in which every read is answered as it should: the record does not tell of others.
class SessionWriter {
public:
    explicit SessionWriter(std::uint64_t Seed) : Random_(Seed) {}

    std::string Write(int Commands)
    {
        std::string Script;
        for (int k = 0; k < Commands; ++k) {
            Script += Command();
        }
        return Script;
    }

private:
    std::string Command()
    {
        switch (Random_.Between(0, 8)) {
        case 0: return "WAIT " + std::to_string(Random_.Between(0, 300)) + ";\n";
        case 1: return "BREAK;\n";
        case 2: return "BAUDRATE " + std::to_string(Random_.Between(1000, 20000)) + " BD;\n";
        case 3: return "BAUDRATE 0.000" + std::to_string(Random_.Between(1000, 9999)) + ";\n";
        case 4: return "BREAK_WIDTH " + std::to_string(Random_.Between(13, 20)) + Eighths() + ";\n";
        case 5: Enhanced_ = !Enhanced_; return Enhanced_ ? "CHKSUM_MODE LIN2_0;\n" : "CHKSUM_MODE LIN1_3;\n";
        case 6: return WriteFrame();
        default: return ReadFrame();
        }
    }

    std::string Eighths()
    {
        static constexpr std::array Texts = {".0", ".125", ".3", ".999"};
        return Texts[static_cast<std::size_t>(Random_.Between(0, 3))];
    }

    std::string WriteFrame()
    {
        const int Length = Random_.Between(1, 8);
        std::string Text = "WRITE_FRAME ID (20) LEN " + std::to_string(Length) + " TX (";
        for (int k = 0; k < Length; ++k) {
            Text += "'d" + std::to_string(Random_.Byte()) + " ";
        }
        Text += ")";
        return Text + (Random_.Between(0, 3) == 0 ? " CHKSUM " + std::to_string(Random_.Byte()) : "") + ";\n";
    }

    std::string ReadFrame()
    {
        static constexpr std::array Answered = {"ID (7D) LEN 2", "ID (85) LEN 4", "ID (F0) LEN 8"};
        const std::string Frame =
            Enhanced_ ? Answered[static_cast<std::size_t>(Random_.Between(0, 2))] : "ID (11) LEN 1";
        return "READ_FRAME " + Frame + ";\n";
    }

    Random Random_;
    bool Enhanced_ = true;
};

class Replay : public testing::TestWithParam<std::uint64_t> {};
TEST_P(Replay, GivesTheSameSamples)
{
    const TemporaryDirectory Directory;
    const std::string Session = SessionWriter(GetParam()).Write(60);
    const std::string Record = Directory.Path("record.lin");
    const Outcome First = RunQuietly({"run", "-", "-b", "10400", "--break-width", "14.3", "--record", Record, "--vcd",
                                      Directory.Path("first.vcd"), "--format", "json", "--timing"},
                                     {.Input = Session});
    ASSERT_EQ(First.Status, 0) << First.Error << Session;
    const Outcome Second = RunQuietly({"run", Record, "--record", Directory.Path("again.lin"), "--vcd",
                                       Directory.Path("second.vcd"), "--format", "json", "--timing"});
    ASSERT_EQ(Second.Status, 0) << Second.Error;
    EXPECT_EQ(Second.Out, First.Out);
    EXPECT_TRUE(Contents(Directory.Path("first.vcd")) == Contents(Directory.Path("second.vcd"))) << Session;
    // The second record begins with the default bit rate, which the first one replaces at once.
    EXPECT_EQ(Contents(Directory.Path("again.lin")), "BAUDRATE 19200 BD;\r\n" + Contents(Record));
}
INSTANTIATE_TEST_SUITE_P(Sessions, Replay, testing::Range<std::uint64_t>(1, 13));

} // namespace

} // namespace Tarvix::Testing
