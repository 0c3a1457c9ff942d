#include "pellumo/simulation/CheckedTable.h"

#include "pellumo/errPellumo.h"
#include "tarvix/common/Formating.h"
#include "tarvix/common/Raise.h"

#include <algorithm>

namespace Pellumo {

namespace {

using Tarvix::FormatText;

std::int64_t LineOf(const toml::source_region& Region)
{
    return static_cast<std::int64_t>(Region.begin.line);
}

std::string Joined(std::span<const std::string_view> Names)
{
    std::string List;
    for (const std::string_view Name : Names) {
        List.append(List.empty() ? "\"" : ", \"").append(Name).append("\"");
    }
    return List;
}

} // namespace

void FailInFile(std::string_view File, std::int64_t Line, const std::string& Reason)
{
    const std::string Place = std::string(File).append(":").append(std::to_string(Line)).append(": ");
    Tarvix::Raise(errPellumo::errBusFile, "BusFile", Place + Reason);
}

std::string HexByte(std::int64_t Byte)
{
    constexpr std::string_view Digits = "0123456789ABCDEF";
    return std::string("0x").append(1, Digits[Byte >> 4 & 0xF]).append(1, Digits[Byte & 0xF]);
}

CheckedTable::CheckedTable(const toml::table& Table, std::string_view File, std::string_view What)
    : Table_(&Table), File_(File), What_(What)
{
}

void CheckedTable::AllowOnly(std::initializer_list<std::string_view> Keys) const
{
    for (const auto& [Key, Value] : *Table_) {
        if (std::find(Keys.begin(), Keys.end(), Key.str()) == Keys.end()) {
            FailInFile(File_, Pellumo::LineOf(Key.source()),
                       FormatText("unknown key \"%1\" in %2; known are %3",
                                  {std::string(Key.str()), std::string(What_), Joined(std::span(Keys))}));
        }
    }
}

std::int64_t CheckedTable::Whole(std::string_view Key, WholeRange Range) const
{
    return WholeAt(Node(Key), Key, Range);
}

std::int64_t CheckedTable::WholeOr(std::string_view Key, std::int64_t Default, WholeRange Range) const
{
    return Has(Key) ? Whole(Key, Range) : Default;
}

std::int64_t CheckedTable::WholeAt(const toml::node& Value, std::string_view Key, WholeRange Range) const
{
    const std::int64_t Line = Pellumo::LineOf(Value.source());
    const auto* Whole = Value.as_integer();
    if (Whole == nullptr) {
        FailInFile(File_, Line, FormatText("\"%1\" must be a whole number", {std::string(Key)}));
    }
    if (Whole->get() < Range.Least || Whole->get() > Range.Most) {
        const bool Open = Range.Most == WholeRange{}.Most;
        FailInFile(File_, Line,
                   FormatText(Open ? "\"%1\" must be at least %2" : "\"%1\" must be from %2 to %3",
                              {std::string(Key), Range.Least, Range.Most}));
    }
    return Whole->get();
}

double CheckedTable::Number(std::string_view Key, double Least, double Most) const
{
    const toml::node& Value = Node(Key);
    if (!Value.is_number()) {
        FailAt(Key, FormatText("\"%1\" must be a number", {std::string(Key)}));
    }
    const double Number =
        Value.is_integer() ? static_cast<double>(Value.as_integer()->get()) : Value.as_floating_point()->get();
    if (!(Number >= Least && Number <= Most)) {
        FailAt(Key, FormatText("\"%1\" must be from %2 to %3", {std::string(Key), Least, Most}));
    }
    return Number;
}

double CheckedTable::NumberOr(std::string_view Key, double Default, double Least, double Most) const
{
    return Has(Key) ? Number(Key, Least, Most) : Default;
}

std::string CheckedTable::Text(std::string_view Key) const
{
    const auto* Value = Node(Key).as_string();
    if (Value == nullptr) {
        FailAt(Key, FormatText("\"%1\" must be a text", {std::string(Key)}));
    }
    return Value->get();
}

std::vector<std::uint8_t> CheckedTable::Bytes(std::string_view Key, std::size_t Most) const
{
    const auto* Array = Node(Key).as_array();
    if (Array == nullptr || Array->empty() || Array->size() > Most) {
        FailAt(Key, FormatText("\"%1\" must be a list of 1 to %2 bytes", {std::string(Key), Most}));
    }
    std::vector<std::uint8_t> Result;
    for (const toml::node& Element : *Array) {
        Result.push_back(static_cast<std::uint8_t>(WholeAt(Element, Key, {0, 0xFF})));
    }
    return Result;
}

std::size_t CheckedTable::OneOf(std::string_view Key, std::span<const std::string_view> Names) const
{
    const auto Found = std::find(Names.begin(), Names.end(), Text(Key));
    if (Found == Names.end()) {
        FailAt(Key, FormatText("\"%1\" must be one of %2", {std::string(Key), Joined(Names)}));
    }
    return static_cast<std::size_t>(Found - Names.begin());
}

std::vector<CheckedTable> CheckedTable::Tables(std::string_view Key, std::string_view What) const
{
    std::vector<CheckedTable> Result;
    if (!Has(Key)) {
        return Result;
    }
    const auto* Array = Node(Key).as_array();
    if (Array == nullptr || !Array->is_homogeneous<toml::table>()) {
        FailAt(Key, FormatText("\"%1\" must be written as %2", {std::string(Key), std::string(What)}));
    }
    for (const toml::node& Element : *Array) {
        Result.emplace_back(*Element.as_table(), File_, What);
    }
    return Result;
}

std::int64_t CheckedTable::LineOf(std::string_view Key) const
{
    return Pellumo::LineOf(Node(Key).source());
}

void CheckedTable::Fail(const std::string& Reason) const
{
    FailInFile(File_, Pellumo::LineOf(Table_->source()), Reason);
}

void CheckedTable::FailAt(std::string_view Key, const std::string& Reason) const
{
    FailInFile(File_, LineOf(Key), Reason);
}

const toml::node& CheckedTable::Node(std::string_view Key) const
{
    const toml::node* Found = Table_->get(Key);
    if (Found == nullptr) {
        Fail(FormatText("%1 lacks the key \"%2\"", {std::string(What_), std::string(Key)}));
    }
    return *Found;
}

} // namespace Pellumo
