/// @file
/// A value whose kind is known only when the program runs: for hosts whose data comes from tables, files or other
/// languages.
#pragma once

#include "tarvix/common/Export.h"

#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace Tarvix {

/// Nothing, a whole number, a real, text, or an array of variants. Two variants are equal when they are of one of these
/// kinds and their values are equal; whether a whole number was made from a byte makes no difference.
class TARVIX_API Variant {
public:
    /// What an array holds.
    using Array = std::vector<Variant>;

    /// Nothing.
    Variant() noexcept = default;

    /// A whole number, of any integral type but bool.
    template <std::integral T>
    requires(!std::same_as<T, bool>) Variant(T Value)
    noexcept : Value_(Whole(Value)) {}

    /// A real.
    template <std::floating_point T>
    Variant(T Value) noexcept : Value_(static_cast<double>(Value))
    {
    }

    /// Text.
    Variant(std::string Value) noexcept : Value_(std::move(Value)) {}
    /// Text.
    Variant(const char* Value) : Value_(std::string(Value)) {}
    /// An array.
    Variant(Array Value) noexcept : Value_(std::move(Value)) {}

    Variant(const Variant&) = default;
    Variant(Variant&&) noexcept = default;
    ~Variant() = default;
    /// By value: the other may be an element of the array that it replaces.
    Variant& operator=(Variant Other) noexcept
    {
        Value_ = std::move(Other.Value_);
        return *this;
    }

    /// An array of unsigned bytes.
    static Variant FromBytes(std::span<const std::uint8_t> Bytes);

    /// True when it holds nothing.
    bool IsEmpty() const noexcept { return std::holds_alternative<std::monostate>(Value_); }
    /// True when it holds an array, be it an empty one.
    bool IsArray() const noexcept { return std::holds_alternative<Array>(Value_); }
    /// True when it holds a whole number that was made from a `std::uint8_t`.
    bool IsByte() const noexcept;

    /// The array's elements.
    /// @throws Error  errTypeMismatch without an array
    const Array& Elements() const&;
    /// As above, but lives on when the variant was a temporary.
    Array Elements() &&;

    /// The number, rounded half to even. Numeric text counts as a number: blanks at both ends, a sign, decimal digits
    /// with "." and an exponent, and nothing else.
    /// @throws Error  errTypeMismatch when it is not numeric, errOverflow outside 0 to 255
    std::uint8_t ToByte() const;

    /// As text: whole numbers as plain decimal digits, also reals that are whole and below 2^53; other reals in the
    /// shortest form that reads back as the same number; nothing as the empty text.
    /// @throws Error  errTypeMismatch for an array
    std::string ToText() const;

    /// True when both are of the same kind and their values are equal.
    bool operator==(const Variant&) const = default;

private:
    struct Whole {
        template <std::integral T>
        explicit constexpr Whole(T Value) noexcept
            : Negative(std::is_signed_v<T> && static_cast<std::int64_t>(Value) < 0),
              Byte(std::same_as<T, std::uint8_t>), Bits(static_cast<std::uint64_t>(Value))
        {
        }
        bool operator==(const Whole& Other) const noexcept { return Negative == Other.Negative && Bits == Other.Bits; }

        bool Negative;
        bool Byte;
        std::uint64_t Bits; ///< two's complement when negative
    };

    std::variant<std::monostate, Whole, double, std::string, Array> Value_;
};

} // namespace Tarvix
