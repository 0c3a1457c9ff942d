// Masters in threads of their own share nothing: the thread sanitizer looks on.

#include "pellumo/OpenDevice.h"
#include "tarvix/tarvix.h"
#include "tests/support/CollectingLog.h"
#include "tests/support/Errors.h"

#include <gtest/gtest.h>

#include <array>
#include <latch>
#include <string>
#include <thread>

namespace Pellumo {
namespace {

using namespace Tarvix::Testing;

constexpr std::size_t Threads = 16;
constexpr int Sessions = 20;

/// What a thread's session left behind.
struct Result {
    std::vector<std::string> Lines;
    std::int32_t LastPosition = 0;
    Failure Refused;
    std::string Answer;

    bool operator==(const Result&) const = default;
};

/// Opens a bus of its own, runs a script that names `Byte`, and closes all again.
Result RunSession(const std::string& Byte)
{
    Result Seen;
    CollectingLog Log;
    const auto Device = OpenDevice("sim:");
    Tarvix::clsLIN Master;
    Master.Initialize(*Device);
    Master.Log(&Log);
    Tarvix::clsLINScriptInterpreter Interpreter;
    Interpreter.Initialize(Master);
    Interpreter.ExecutionProgress = [&Seen](std::int32_t Position) { Seen.LastPosition = Position; };
    Interpreter.ExecuteScript("BAUDRATE 19200 BD; WRITE_FRAME ID (20) LEN 1 TX (" + Byte +
                              "); READ_FRAME ID (61) LEN 1 RX (" + Byte + ");");
    Seen.Answer = Master.Data2().Elements().front().ToText();
    Seen.Refused = FailureOf([&] { Interpreter.ExecuteScript("BAUDRATE 5.2E-05; NOTHING;"); });
    Seen.Lines = Log.Lines;
    Interpreter.Terminate();
    Master.Terminate();
    return Seen;
}

TEST(Threads, WithMastersOfTheirOwnDoNotDisturbEachOther)
{
    std::array<Result, Threads> Alone;
    std::array<bool, Threads> Differs{};
    const auto ByteOf = [](std::size_t Thread) { return std::to_string(10 + Thread); };
    for (std::size_t k = 0; k < Threads; ++k) {
        Alone[k] = RunSession(ByteOf(k));
    }
    ASSERT_EQ(Alone[0].Answer, "16") << "10, hexadecimal";
    ASSERT_NE(Alone[0].Refused, NoFailure);
    ASSERT_EQ(Alone[0].Lines.size(), 4U);

    std::latch Start(Threads);
    std::vector<std::jthread> Running;
    for (std::size_t k = 0; k < Threads; ++k) {
        Running.emplace_back([&, k] {
            Start.arrive_and_wait();
            for (int Session = 0; Session < Sessions; ++Session) {
                Differs[k] = Differs[k] || RunSession(ByteOf(k)) != Alone[k];
            }
        });
    }
    Running.clear(); // waits for all of them
    EXPECT_EQ(Differs, (std::array<bool, Threads>{}));
}

} // namespace
} // namespace Pellumo
