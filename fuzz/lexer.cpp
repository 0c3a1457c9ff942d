/// @file
/// Fuzzes the language half of the scripts: any bytes, read as UTF-8, are scanned as the plain rules say, and every
/// conversion of every token ends with a value or an `Error`.
#include "tarvix/script/UnicodeText.h"
#include "tarvix/script/clsLINScriptLexer.h"
#include "tests/support/PlainLexer.h"

#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Fuzzing.h"

namespace {

using Tarvix::clsLINScriptLexer;
using Tarvix::Fuzzing::Demand;
using Tarvix::Fuzzing::Succeeds;
using Tarvix::Testing::PlainToken;

void ConvertInEveryWay(const clsLINScriptLexer& Lexer, std::u16string_view Text)
{
    Succeeds([&] { Lexer.TokenToKeyword(Text); });
    Succeeds([&] { Lexer.TokenToNumberInteger(Text); });
    Succeeds([&] { Lexer.TokenToNumberReal(Text); });
    std::int32_t Length = 0;
    std::vector<std::uint8_t> Bytes;
    Succeeds([&] { Lexer.TokenToByteStream(Text, Length, Bytes); });
    const std::string Written = Lexer.CodeFromByteStreamHex(Bytes, Length, true);
    Demand(Written.size() == (Length == 0 ? 2 : static_cast<std::size_t>(Length) * 3 + 1));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
    const std::u16string Script = Tarvix::UTF8ToUTF16(std::string(Data, Data + Size));
    clsLINScriptLexer Lexer;
    Lexer.ScanInput(Script);
    for (const PlainToken& Expected : Tarvix::Testing::PlainLexer(Script).Tokens()) {
        std::u16string_view Value;
        Demand(Lexer.GetToken(Value) == Expected.Type && Lexer.ScanPos() == Expected.ScanPos);
        Demand(Value == Expected.Value || Expected.Type == Tarvix::ettOpenByteStream);
        ConvertInEveryWay(Lexer, Value);
    }
    return 0;
}
