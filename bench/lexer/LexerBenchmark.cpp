/// @file
/// Tokens per second of the script lexer, beside a flex scanner of the same language on the same script. The lexer
/// scans UTF-16 and copies the script first, as `ScanInput` does; flex scans bytes in place.
#include "tarvix/script/clsLINScriptLexer.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "bench/lexer/FlexScanner.h"

namespace Tarvix {
namespace {

constexpr std::string_view DoorTest = R"(// Door module, end-of-line test
// Supply 13.5 V, bus pull-up 1 kOhm. Expected duration about 2 s.

BAUDRATE 19200 BD;
BREAK_WIDTH 13.5;
SYNC_BYTE (55);
CHKSUM_MODE LIN2_0;

// wake the module up, then give it 100 ms to start
BREAK;
WAIT 1920;

// window lifter: down, stop, up
WRITE_FRAME ID (20) LEN 4 TX (01 00 7F FF);
WAIT 50;
WRITE_FRAME ID (20) LEN 4 TX (00 00 7F FF);   // stop
WAIT 50;
WRITE_FRAME ID (20) LEN 4 TX ('b0000_0010 00 'd127 ff);
READ_FRAME ID (61) LEN 2 RX (12 34) RXMASK (FF F0);
READ_FRAME ID 97 LEN 8
    RX     (00 01 02 03 04 05 06 07)          // position and current
    RXMASK (FF FF FF FF 00 00 0F FF)
    CHKSUM (A5) CHKSUMMASK (00);

// mirror: the old module answers with the classic checksum
chksum_mode lin1_3;
baudrate 5.208333E-05;
write_frame id (3c) len 2 tx (01 02) chksum (fc);
read_frame id (7d) len 8;
wait 10;
)";

/// The script of `DoorTest` several times over, some 32 kB, with CR LF at every line's end.
std::string LongScript()
{
    std::string Script;
    for (int Repetition = 0; Repetition < 32; ++Repetition) {
        for (const char Letter : DoorTest) {
            Script.append(Letter == '\n' ? "\r\n" : std::string(1, Letter));
        }
    }
    return Script;
}

struct Token {
    std::int32_t Type;
    std::string Text;

    bool operator==(const Token&) const = default;
};

/// The script in a buffer as flex wants it, scanned while the object lives.
class FlexInput {
public:
    explicit FlexInput(std::string& Buffer) : State_(LINScript_scan_buffer(Buffer.data(), Buffer.size())) {}
    ~FlexInput() { LINScript_delete_buffer(State_); }
    FlexInput(const FlexInput&) = delete;
    FlexInput& operator=(const FlexInput&) = delete;

private:
    yy_buffer_state* State_;
};

std::string FlexBuffer(const std::string& Script)
{
    return std::string(Script).append(2, '\0');
}

std::string_view ValueOf(std::int32_t Type, std::string_view Text)
{
    switch (Type) {
    case ettByteStream: return Text.substr(1, Text.size() - 2);
    case ettOpenByteStream: return Text.substr(1);
    case ettComment: return Text.substr(2);
    default: return Text;
    }
}

std::vector<Token> TokensByFlex(const std::string& Script)
{
    std::string Buffer = FlexBuffer(Script);
    const FlexInput Input(Buffer);
    std::vector<Token> Tokens;
    while (const int Type = LINScriptlex()) {
        const std::string_view Text(LINScripttext, static_cast<std::size_t>(LINScriptleng));
        Tokens.push_back({Type, std::string(ValueOf(Type, Text))});
    }
    return Tokens;
}

std::vector<Token> TokensByLexer(const std::string& Script)
{
    clsLINScriptLexer Lexer;
    Lexer.TakeInput(std::u16string(Script.begin(), Script.end()));
    std::vector<Token> Tokens;
    std::u16string_view Value;
    while (const std::int32_t Type = Lexer.GetToken(Value)) {
        Tokens.push_back({Type, std::string(Value.begin(), Value.end())});
    }
    return Tokens;
}

void Lexer(benchmark::State& State)
{
    const std::string Bytes = LongScript();
    const std::u16string Script(Bytes.begin(), Bytes.end());
    clsLINScriptLexer Scanner;
    std::int64_t Tokens = 0;
    for ([[maybe_unused]] const auto Iteration : State) {
        std::u16string_view Value;
        Scanner.ScanInput(Script);
        while (const std::int32_t Type = Scanner.GetToken(Value)) {
            benchmark::DoNotOptimize(Type);
            benchmark::DoNotOptimize(Value);
            ++Tokens;
        }
    }
    State.SetItemsProcessed(Tokens);
}

void Flex(benchmark::State& State)
{
    std::string Buffer = FlexBuffer(LongScript());
    std::int64_t Tokens = 0;
    for ([[maybe_unused]] const auto Iteration : State) {
        const FlexInput Input(Buffer);
        while (const int Type = LINScriptlex()) {
            benchmark::DoNotOptimize(Type);
            benchmark::DoNotOptimize(LINScripttext);
            benchmark::DoNotOptimize(LINScriptleng);
            ++Tokens;
        }
    }
    State.SetItemsProcessed(Tokens);
}

BENCHMARK(Lexer);
BENCHMARK(Flex);

/// Reports as usual, and keeps the best rate of each benchmark: the one that other programs disturbed least.
class Comparison : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& Runs) override
    {
        for (const Run& Each : Runs) {
            const auto Rate = Each.counters.find("items_per_second");
            if (Each.run_type == Run::RT_Iteration && Rate != Each.counters.end()) {
                double& Best = BestRates_[Each.run_name.function_name];
                Best = std::max(Best, double{Rate->second});
            }
        }
        ConsoleReporter::ReportRuns(Runs);
    }

    void Finalize() override
    {
        if (BestRates_.size() == 2) {
            GetOutputStream() << "tokens per second, lexer / flex: " << BestRates_["Lexer"] / BestRates_["Flex"]
                              << '\n';
        }
    }

private:
    std::map<std::string, double> BestRates_;
};

} // namespace
} // namespace Tarvix

int main(int Count, char** Arguments)
{
    const std::string Script = Tarvix::LongScript();
    if (Tarvix::TokensByLexer(Script) != Tarvix::TokensByFlex(Script)) {
        std::cerr << "the two scanners see different tokens\n";
        return 1;
    }
    benchmark::Initialize(&Count, Arguments);
    if (benchmark::ReportUnrecognizedArguments(Count, Arguments)) {
        return 2;
    }
    Tarvix::Comparison Reporter;
    benchmark::RunSpecifiedBenchmarks(&Reporter);
    benchmark::Shutdown();
}
