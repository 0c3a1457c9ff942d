#include "tarvix/script/LINScript.h"

#include <algorithm>
#include <cstddef>

namespace Tarvix {

namespace {

constexpr std::array<std::string_view, 9> TokenTypeNames = {
    "nothing",           "keyword", "integer number", "real number", "byte stream",
    "symbolic constant", ";",       "comment",        "end of line"};

// Different for every keyword, so that a word is compared with one keyword at most.
constexpr std::size_t HashOf(std::size_t Length, char16_t FirstLetter) noexcept
{
    constexpr unsigned CaseIgnored = 0x1F;
    return (Length + std::size_t{3} * (FirstLetter & CaseIgnored)) % 32;
}

consteval std::array<eKeyword, 32> CodesByHash()
{
    std::array<eKeyword, 32> Codes{};
    Codes.fill(ekwNone);
    for (std::size_t k = 0; k < KeywordTable.size(); ++k) {
        eKeyword& Code = Codes[HashOf(KeywordTable[k].size(), static_cast<unsigned char>(KeywordTable[k].front()))];
        if (Code != ekwNone) {
            throw "two keywords share a hash"; // stops the compilation
        }
        Code = static_cast<eKeyword>(k);
    }
    return Codes;
}

constexpr char16_t UpperCase(char16_t Unit) noexcept
{
    return Unit >= u'a' && Unit <= u'z' ? static_cast<char16_t>(Unit - u'a' + u'A') : Unit;
}

bool IsWrittenAs(std::u16string_view Word, std::string_view Keyword) noexcept
{
    return std::equal(Word.begin(), Word.end(), Keyword.begin(), Keyword.end(), [](char16_t Unit, char Letter) {
        return UpperCase(Unit) == static_cast<unsigned char>(Letter);
    });
}

} // namespace

std::string TokenTypeName(std::int32_t TokenType)
{
    const bool Named = TokenType >= 0 && TokenType < static_cast<std::int32_t>(TokenTypeNames.size());
    return std::string(Named ? TokenTypeNames[static_cast<std::size_t>(TokenType)] : "unknown construct");
}

eKeyword FindKeyword(std::u16string_view Word) noexcept
{
    static constexpr std::array<eKeyword, 32> Codes = CodesByHash();
    if (Word.empty()) {
        return ekwNone;
    }
    const eKeyword Code = Codes[HashOf(Word.size(), Word.front())];
    const bool Found = Code != ekwNone && IsWrittenAs(Word, KeywordTable[static_cast<std::size_t>(Code)]);
    return Found ? Code : ekwNone;
}

} // namespace Tarvix
