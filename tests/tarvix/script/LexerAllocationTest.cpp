#include "tarvix/script/UnicodeText.h"
#include "tarvix/script/clsLINScriptLexer.h"
#include "tests/support/AllocationCounter.h"

#include <gtest/gtest.h>

namespace Tarvix {

TEST(LexerAllocation, NeitherTokensNorTheirValuesCostMemory)
{
    clsLINScriptLexer Lexer;
    Lexer.ScanInput(
        u"BAUDRATE 5.208333E-05; // a comment that is too long for the memory inside a std::u16string\r\n"
        u"WRITE_FRAME ID (3C) LEN 2 TX (01 02); #unknown;constructs;may;be;of;any;length (an open byte stream");
    std::vector<std::uint8_t> Bytes;
    Bytes.reserve(64);
    const std::size_t Before = Testing::Allocations();
    std::u16string_view Value;
    std::int32_t Length = 0;
    double Sum = 0.0;
    while (const std::int32_t Type = Lexer.GetToken(Value)) {
        switch (Type) {
        case ettKeyword: Sum += Lexer.TokenToKeyword(Value); break;
        case ettInteger: Sum += Lexer.TokenToNumberInteger(Value); break;
        case ettReal: Sum += Lexer.TokenToNumberReal(Value); break;
        case ettByteStream: Lexer.TokenToByteStream(Value, Length, Bytes); break;
        default: break;
        }
    }
    EXPECT_EQ(Testing::Allocations(), Before);
    EXPECT_GT(Sum, 0.0);
}

TEST(LexerAllocation, AScriptInUTF8IsHeldOnceInUTF16)
{
    const std::string Script(1000000, ' ');
    clsLINScriptLexer Lexer;
    Testing::ResetPeak();
    const std::size_t Before = Testing::LiveBytes();
    Lexer.TakeInput(UTF8ToUTF16(Script));
    EXPECT_LE(Testing::PeakBytes() - Before, 2 * Script.size() + 100);
}

} // namespace Tarvix
