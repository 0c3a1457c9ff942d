#include "pellumo/simulation/BareText.h"

#include <algorithm>

namespace Pellumo {

namespace {

/// The index behind the quotes that close a text begun with `Quotes`, one or three of a kind.
/// @param Begin  behind the opening ones
std::size_t EndOfQuoted(std::string_view Text, std::size_t Begin, std::string_view Quotes) noexcept
{
    const bool OneLine = Quotes.size() == 1;
    const bool Escapes = Quotes.front() == '"';
    for (std::size_t i = Begin; i < Text.size(); ++i) {
        if (Escapes && Text[i] == '\\') {
            ++i;
        } else if (OneLine && Text[i] == '\n') {
            return i;
        } else if (Text.substr(i).starts_with(Quotes)) {
            i += Quotes.size();
            // Up to two quotes may stand right before the three that close.
            for (int k = 0; k < 2 && !OneLine && i < Text.size() && Text[i] == Quotes.front(); ++k) {
                ++i;
            }
            return i;
        }
    }
    return Text.size();
}

/// The index behind the comment, the quoted text or the single byte at `Begin`.
std::size_t EndOfPiece(std::string_view Text, std::size_t Begin) noexcept
{
    const std::string_view Rest = Text.substr(Begin);
    if (Rest.front() == '#') {
        return std::min(Text.find('\n', Begin), Text.size());
    }
    for (const std::string_view Quotes : {R"(""")", "'''", "\"", "'"}) {
        if (Rest.starts_with(Quotes)) {
            return EndOfQuoted(Text, Begin + Quotes.size(), Quotes);
        }
    }
    return Begin + 1;
}

} // namespace

std::optional<std::size_t> FindBareNonASCII(std::string_view Text) noexcept
{
    constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
    std::size_t i = Text.starts_with(ByteOrderMark) ? ByteOrderMark.size() : 0;
    while (i < Text.size()) {
        if (static_cast<unsigned char>(Text[i]) >= 0x80) {
            return i;
        }
        i = EndOfPiece(Text, i);
    }
    return std::nullopt;
}

} // namespace Pellumo
