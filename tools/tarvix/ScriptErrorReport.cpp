#include "tools/tarvix/ScriptErrorReport.h"

#include "tools/tarvix/FrameFailure.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace Tarvix::Tool {

namespace {

struct Place {
    std::size_t Line;             ///< from 1
    std::u16string_view LineText; ///< without its end
    std::size_t Unit;             ///< index in `LineText`
};

bool IsBlank(char16_t Unit)
{
    return Unit <= u' ';
}

bool IsLowSurrogate(char16_t Unit)
{
    return Unit >= 0xDC00 && Unit <= 0xDFFF;
}

/// Columns that `Text` takes: its characters.
std::size_t ColumnsOf(std::u16string_view Text)
{
    return Text.size() - static_cast<std::size_t>(std::count_if(Text.begin(), Text.end(), IsLowSurrogate));
}

/// Where the last character before `CodePos` stands, blanks and line ends not counted.
Place PlaceOf(std::u16string_view Script, std::int32_t CodePos)
{
    std::size_t Index = std::min(static_cast<std::size_t>(std::max(CodePos, 1)) - 1, Script.size());
    while (Index > 0 && IsBlank(Script[Index - 1])) {
        --Index;
    }
    Index -= Index > 0 ? 1 : 0;
    Index -= Index > 0 && IsLowSurrogate(Script[Index]) ? 1 : 0; // a pair is one character

    const std::u16string_view Before = Script.substr(0, Index);
    const std::size_t Begin = Before.rfind(u'\n') + 1; // none found: 0
    std::u16string_view Line = Script.substr(Begin, Script.find(u'\n', Begin) - Begin);
    if (Line.ends_with(u'\r')) {
        Line.remove_suffix(1);
    }
    return {static_cast<std::size_t>(std::count(Before.begin(), Before.end(), u'\n')) + 1, Line, Index - Begin};
}

/// Keeps what stands around the caret when the line is too long for a screen.
Place Clipped(Place Full)
{
    constexpr std::size_t Before = 70;
    constexpr std::size_t Width = 100;
    if (Full.LineText.size() > Width && Full.Unit > Before) {
        std::size_t Cut = Full.Unit - Before;
        Cut += IsLowSurrogate(Full.LineText[Cut]) ? 1 : 0;
        Full.LineText.remove_prefix(Cut);
        Full.Unit -= Cut;
    }
    if (Full.LineText.size() > Width) {
        Full.LineText = Full.LineText.substr(0, IsLowSurrogate(Full.LineText[Width]) ? Width - 1 : Width);
    }
    return Full;
}

/// The line without control characters, which could upset the terminal.
std::u16string Printable(std::u16string_view Line)
{
    std::u16string Text(Line);
    std::replace_if(
        Text.begin(), Text.end(),
        [](char16_t Unit) { return (Unit < u' ' && Unit != u'\t') || (Unit >= 0x7F && Unit < 0xA0); }, u'?');
    return Text;
}

/// Blanks as wide as `Text`; tabs stay, so that the caret stands right whatever their width.
std::string BlanksFor(std::u16string_view Text)
{
    std::string Blanks;
    for (const char16_t Unit : Text) {
        if (!IsLowSurrogate(Unit)) {
            Blanks += Unit == u'\t' ? '\t' : ' ';
        }
    }
    return Blanks;
}

} // namespace

std::string ScriptErrorReport(const ScriptFile& Script, std::int32_t CodePos, const Error& Failure)
{
    const Place Found = PlaceOf(Script.Text, CodePos);
    const std::size_t Column = ColumnsOf(Found.LineText.substr(0, Found.Unit)) + 1;
    std::string Text = std::string(Script.Name)
                           .append(":")
                           .append(std::to_string(Found.Line))
                           .append(":")
                           .append(std::to_string(Column))
                           .append(": ")
                           .append(Headline(Failure))
                           .append("\n");

    const Place Shown = Clipped(Found);
    Text.append("    ").append(ToUTF8(Printable(Shown.LineText))).append("\n");
    Text.append("    ").append(BlanksFor(Shown.LineText.substr(0, Shown.Unit))).append("^\n");
    if (const std::string_view Advice = AdviceFor(Failure); !Advice.empty()) {
        Text.append(Advice).append("\n");
    }
    return Text;
}

} // namespace Tarvix::Tool
