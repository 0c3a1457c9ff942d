#include "tarvix/common/FloatingPoint.h"
#include "tarvix/common/Raise.h"
#include "tarvix/script/clsLINScriptLexer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace Tarvix {

namespace {

constexpr int SignificantDigits = 7;

void AppendHex(std::string& Text, std::uint8_t Byte)
{
    constexpr std::string_view Digits = "0123456789ABCDEF";
    Text.push_back(Digits[Byte >> 4U]);
    Text.push_back(Digits[Byte & 0x0FU]);
}

} // namespace

// As the conversions, these belong to the lexer's interface although none of them needs the state of a scan.
// NOLINTBEGIN(readability-convert-member-functions-to-static)

std::string clsLINScriptLexer::CodeMakeCommand(std::span<const std::string> TokenStrings) const
{
    std::string Command;
    for (const std::string& Token : TokenStrings) {
        Command.append(Command.empty() ? "" : " ").append(Token);
    }
    return Command.append(";\r\n");
}

std::string clsLINScriptLexer::CodeFromKeyword(std::int32_t Keyword) const
{
    if (Keyword < 0 || std::cmp_greater_equal(Keyword, KeywordTable.size())) {
        Raise(errGeneral::errIndexOutOfRange);
    }
    return std::string(KeywordTable[static_cast<std::size_t>(Keyword)]);
}

std::string clsLINScriptLexer::CodeFromNumberInteger(std::int32_t Value) const
{
    return std::to_string(Value);
}

std::string clsLINScriptLexer::CodeFromNumberReal(float Value) const
{
    if (!std::isfinite(Value)) {
        Raise(errGeneral::errOverflow);
    }
    const DefaultFloatingPoint Guard;
    std::array<char, 32> Digits{}; // the longest numbers are as "-0.0001234567" and "-1.234567e-38"
    const auto Result = std::to_chars(Digits.data(), Digits.data() + Digits.size(), Value, std::chars_format::general,
                                      SignificantDigits);
    std::string Text(Digits.data(), Result.ptr);
    std::replace(Text.begin(), Text.end(), 'e', 'E');
    return Text == "-0" ? "0" : Text;
}

std::string clsLINScriptLexer::CodeFromConstant(std::string_view Value) const
{
    return std::string(Value);
}

std::string clsLINScriptLexer::CodeFromComment(std::string_view Value) const
{
    return std::string("// ").append(Value);
}

std::string clsLINScriptLexer::CodeFromByteStreamHex(std::span<const std::uint8_t> Data, std::int32_t DataLength,
                                                     bool /*Spaces*/) const
{
    if (std::cmp_greater(DataLength, Data.size())) {
        Raise(errGeneral::errIndexOutOfRange);
    }
    std::string Text = "(";
    for (const std::uint8_t Byte : Data.first(static_cast<std::size_t>(std::max(DataLength, 0)))) {
        Text.append(Text.size() > 1 ? " " : "");
        AppendHex(Text, Byte);
    }
    return Text.append(")");
}

// NOLINTEND(readability-convert-member-functions-to-static)

} // namespace Tarvix
