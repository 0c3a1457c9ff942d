#include "tarvix/script/LINScript.h"

#include <algorithm>
#include <cstddef>

namespace Tarvix {

// Half of the tokens of a script are words, and each must be looked up. A hash leaves one keyword to compare with; that
// comparison takes four code units at a time, so that no branch depends on the word's length.

namespace {

constexpr std::array<std::string_view, 9> TokenTypeNames = {"nothing",     "keyword",     "integer number",
                                                            "real number", "byte stream", "symbolic constant",
                                                            ";",           "comment",     "end of line"};

constexpr std::size_t ShortestKeyword = 2;
constexpr std::size_t LongestKeyword = 12; // no keyword is longer; three times four code units

constexpr std::uint64_t TwoUnits(const char16_t* Text) noexcept
{
    return Text[0] | std::uint64_t{Text[1]} << 16;
}

constexpr std::uint64_t FourUnits(const char16_t* Text) noexcept
{
    return TwoUnits(Text) | TwoUnits(Text + 2) << 32;
}

/// All code units of a word as long as a keyword, in three numbers that overlap when it is shorter than 12.
struct PackedWord {
    std::uint64_t Front;
    std::uint64_t Middle;
    std::uint64_t Back;
};

constexpr PackedWord Pack(const char16_t* Word, std::size_t Length) noexcept
{
    const std::uint64_t Front = Length < 4 ? TwoUnits(Word) : FourUnits(Word);
    const std::uint64_t Back = Length < 4 ? TwoUnits(Word + Length - 2) : FourUnits(Word + Length - 4);
    const std::uint64_t Middle = Length < 8 ? Back : FourUnits(Word + 4);
    return {Front, Middle, Back};
}

struct Keyword {
    eKeyword Code = ekwNone;
    std::size_t Length = 0;
    PackedWord Text{};
    PackedWord CaseMask{}; ///< clears the bit that tells small letters from capitals; "_" has no case
};

consteval Keyword MakeKeyword(eKeyword Code)
{
    const std::string_view Text = KeywordTable[static_cast<std::size_t>(Code)];
    std::array<char16_t, LongestKeyword> Units{};
    std::array<char16_t, LongestKeyword> Mask{};
    std::copy(Text.begin(), Text.end(), Units.begin());
    std::transform(Text.begin(), Text.end(), Mask.begin(), [](char Letter) { return Letter == '_' ? 0xFFFF : 0xFFDF; });
    return {Code, Text.size(), Pack(Units.data(), Text.size()), Pack(Mask.data(), Text.size())};
}

constexpr bool IsWrittenAs(std::u16string_view Word, const Keyword& Candidate) noexcept
{
    if (Word.size() != Candidate.Length) {
        return false;
    }
    const auto& [Front, Middle, Back] = Pack(Word.data(), Word.size());
    const std::uint64_t Difference = ((Front & Candidate.CaseMask.Front) ^ Candidate.Text.Front) |
                                     ((Middle & Candidate.CaseMask.Middle) ^ Candidate.Text.Middle) |
                                     ((Back & Candidate.CaseMask.Back) ^ Candidate.Text.Back);
    return Difference == 0;
}

/// Different for every keyword, the same for its small letters and capitals.
constexpr std::size_t HashOf(std::size_t Length, char16_t FirstUnit) noexcept
{
    return (Length + std::size_t{3} * (FirstUnit & 0x1F)) % 32;
}

consteval std::array<Keyword, 32> KeywordsByHash()
{
    std::array<Keyword, 32> Keywords{};
    for (std::size_t k = 0; k < KeywordTable.size(); ++k) {
        const std::string_view Text = KeywordTable[k];
        Keyword& Place = Keywords[HashOf(Text.size(), static_cast<unsigned char>(Text.front()))];
        if (Place.Code != ekwNone || Text.size() < ShortestKeyword) {
            throw "two keywords share a hash, or one is too short to be packed"; // stops the compilation
        }
        Place = MakeKeyword(static_cast<eKeyword>(k));
    }
    return Keywords;
}

constexpr std::array<Keyword, 32> Keywords = KeywordsByHash();

} // namespace

std::string TokenTypeName(std::int32_t TokenType)
{
    const bool Named = TokenType >= 0 && TokenType < static_cast<std::int32_t>(TokenTypeNames.size());
    return std::string(Named ? TokenTypeNames[static_cast<std::size_t>(TokenType)] : "unknown construct");
}

eKeyword FindKeyword(std::u16string_view Word) noexcept
{
    if (Word.empty()) {
        return ekwNone;
    }
    const Keyword& Candidate = Keywords[HashOf(Word.size(), Word.front())];
    return IsWrittenAs(Word, Candidate) ? Candidate.Code : ekwNone;
}

} // namespace Tarvix
