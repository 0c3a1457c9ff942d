#include "tarvix/common/Formating.h"

namespace Tarvix {

namespace {

void ReplaceAll(std::string& Text, std::string_view Placeholder, std::string_view Replacement)
{
    std::size_t Position = 0;
    while ((Position = Text.find(Placeholder, Position)) != std::string::npos) {
        Text.replace(Position, Placeholder.size(), Replacement);
        Position += Replacement.size();
    }
}

} // namespace

std::string FormatText(std::string_view Template, std::initializer_list<Variant> Values)
{
    std::string Text(Template);
    int Number = 0;
    for (const Variant& Value : Values) {
        ++Number;
        ReplaceAll(Text, std::string("%").append(std::to_string(Number)), Value.ToText());
    }
    return Text;
}

} // namespace Tarvix
