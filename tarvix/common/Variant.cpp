#include "tarvix/common/Variant.h"

#include "tarvix/common/CheckedArithmetic.h"
#include "tarvix/common/DecimalText.h"
#include "tarvix/common/Raise.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>
#include <utility>

namespace Tarvix {

namespace {

template <typename T>
std::string Digits(T Value)
{
    std::array<char, 32> Text{}; // the shortest form of any double has at most 24 characters
    const auto Result = std::to_chars(Text.data(), Text.data() + Text.size(), Value);
    return {Text.data(), Result.ptr};
}

/// From 2^53 on a 64-bit float no longer tells every whole number.
bool IsWhole(double Value) noexcept
{
    return std::fabs(Value) < 0x1p53 && std::trunc(Value) == Value;
}

std::string_view WithoutBlanks(std::string_view Text) noexcept
{
    const auto First = std::min(Text.find_first_not_of(' '), Text.size());
    Text.remove_prefix(First);
    return Text.substr(0, Text.find_last_not_of(' ') + 1);
}

double NumberFrom(std::string_view Text)
{
    std::string_view Number = WithoutBlanks(Text);
    const bool Signed = Number.starts_with('+') || Number.starts_with('-');
    const bool Negative = Number.starts_with('-');
    Number.remove_prefix(Signed ? 1 : 0);
    const double Magnitude = DecimalToReal(Number);
    return Negative ? -Magnitude : Magnitude;
}

} // namespace

Variant Variant::FromBytes(std::span<const std::uint8_t> Bytes)
{
    return Array(Bytes.begin(), Bytes.end());
}

bool Variant::IsByte() const noexcept
{
    const auto* Number = std::get_if<Whole>(&Value_);
    return Number != nullptr && Number->Byte;
}

const Variant::Array& Variant::Elements() const&
{
    const auto* Elements = std::get_if<Array>(&Value_);
    if (Elements == nullptr) {
        Raise(errGeneral::errTypeMismatch);
    }
    return *Elements;
}

Variant::Array Variant::Elements() &&
{
    return std::as_const(*this).Elements();
}

std::uint8_t Variant::ToByte() const
{
    if (const auto* Number = std::get_if<Whole>(&Value_)) {
        if (Number->Negative || Number->Bits > 0xFF) {
            Raise(errGeneral::errOverflow);
        }
        return static_cast<std::uint8_t>(Number->Bits);
    }
    if (const auto* Real = std::get_if<double>(&Value_)) {
        return RoundTo<std::uint8_t>(*Real);
    }
    if (const auto* Text = std::get_if<std::string>(&Value_)) {
        return RoundTo<std::uint8_t>(NumberFrom(*Text));
    }
    Raise(errGeneral::errTypeMismatch);
}

std::string Variant::ToText() const
{
    if (const auto* Number = std::get_if<Whole>(&Value_)) {
        return Number->Negative ? Digits(static_cast<std::int64_t>(Number->Bits)) : Digits(Number->Bits);
    }
    if (const auto* Real = std::get_if<double>(&Value_)) {
        return IsWhole(*Real) ? Digits(static_cast<std::int64_t>(*Real)) : Digits(*Real);
    }
    if (const auto* Text = std::get_if<std::string>(&Value_)) {
        return *Text;
    }
    if (IsArray()) {
        Raise(errGeneral::errTypeMismatch);
    }
    return {};
}

} // namespace Tarvix
