/// @file
/// Values taken from a TOML file with every check that they need. For the sources of the bus file only: no other header
/// includes it.
#pragma once

#define TOML_HEADER_ONLY 1
#define TOML_ENABLE_FORMATTERS 0
#include <toml++/toml.h>

#include <cstdint>
#include <initializer_list>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Pellumo {

/// Whole numbers from `Least` to `Most`.
struct WholeRange {
    std::int64_t Least = 0;
    std::int64_t Most = std::numeric_limits<std::int64_t>::max();
};

/// A table of a file. Everything that is wrong with it raises errBusFile with file, line and reason.
class CheckedTable {
public:
    /// @param File  name for messages
    /// @param What  the kind of table as the file's author knows it, for example "[[slave]]"
    CheckedTable(const toml::table& Table, std::string_view File, std::string_view What);

    /// Refuses every key but these.
    void AllowOnly(std::initializer_list<std::string_view> Keys) const;

    bool Has(std::string_view Key) const { return Table_->contains(Key); }

    /// The value of a key that must be there.
    std::int64_t Whole(std::string_view Key, WholeRange Range) const;
    double Number(std::string_view Key, double Least, double Most) const;
    std::string Text(std::string_view Key) const;
    std::vector<std::uint8_t> Bytes(std::string_view Key, std::size_t Most) const;
    /// The index in `Names` of the text under `Key`.
    std::size_t OneOf(std::string_view Key, std::span<const std::string_view> Names) const;
    bool IsText(std::string_view Key) const { return Node(Key).is_string(); }

    /// The same, or `Default` without the key.
    std::int64_t WholeOr(std::string_view Key, std::int64_t Default, WholeRange Range) const;
    double NumberOr(std::string_view Key, double Default, double Least, double Most) const;

    /// The tables of an array of tables; none without the key.
    std::vector<CheckedTable> Tables(std::string_view Key, std::string_view What) const;

    /// Where a value stands.
    std::int64_t LineOf(std::string_view Key) const;

    [[noreturn]] void Fail(const std::string& Reason) const;
    [[noreturn]] void FailAt(std::string_view Key, const std::string& Reason) const;

private:
    const toml::node& Node(std::string_view Key) const;
    std::int64_t WholeAt(const toml::node& Value, std::string_view Key, WholeRange Range) const;

    const toml::table* Table_;
    std::string_view File_;
    std::string_view What_;
};

/// Raises errBusFile for a line of a file.
[[noreturn]] void FailInFile(std::string_view File, std::int64_t Line, const std::string& Reason);

/// A byte as "0x3D".
std::string HexByte(std::int64_t Byte);

} // namespace Pellumo
