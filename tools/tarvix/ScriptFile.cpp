#include "tools/tarvix/ScriptFile.h"

#include "tools/tarvix/ExitStatus.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <system_error>

namespace Tarvix::Tool {

namespace {

constexpr char32_t Replacement = 0xFFFD;
constexpr char32_t FirstSupplementary = 0x10000;

struct CodePoint {
    char32_t Value;
    std::size_t Bytes;
};

/// The code point at the front of UTF-8; a byte that begins none is U+FFFD.
CodePoint FrontOfUTF8(std::string_view Text)
{
    const auto Byte = [Text](std::size_t k) { return static_cast<std::uint8_t>(Text[k]); };
    const std::size_t Bytes = Byte(0) < 0x80 ? 1 : Byte(0) < 0xE0 ? 2 : Byte(0) < 0xF0 ? 3 : 4;
    constexpr std::array<char32_t, 5> Smallest = {0, 0, 0x80, 0x800, FirstSupplementary};
    if (Bytes == 1) {
        return {Byte(0), 1};
    }
    if (Byte(0) < 0xC2 || Byte(0) > 0xF4 || Bytes > Text.size()) {
        return {Replacement, 1};
    }
    char32_t Value = Byte(0) & (0x7FU >> Bytes);
    for (std::size_t k = 1; k < Bytes; ++k) {
        if ((Byte(k) & 0xC0U) != 0x80U) {
            return {Replacement, 1};
        }
        Value = Value << 6 | (Byte(k) & 0x3FU);
    }
    const bool Surrogate = Value >= 0xD800 && Value <= 0xDFFF;
    if (Value < Smallest[Bytes] || Surrogate || Value > 0x10FFFF) {
        return {Replacement, 1};
    }
    return {Value, Bytes};
}

std::u16string FromUTF8(std::string_view Text)
{
    std::u16string Units;
    Units.reserve(Text.size());
    while (!Text.empty()) {
        const CodePoint Next = FrontOfUTF8(Text);
        if (Next.Value < FirstSupplementary) {
            Units += static_cast<char16_t>(Next.Value);
        } else {
            Units += static_cast<char16_t>(0xD800 + ((Next.Value - FirstSupplementary) >> 10));
            Units += static_cast<char16_t>(0xDC00 + (Next.Value & 0x3FF));
        }
        Text.remove_prefix(Next.Bytes);
    }
    return Units;
}

/// @param High  index of the more significant byte in a pair
std::u16string FromUTF16(std::string_view Bytes, std::size_t High)
{
    std::u16string Units;
    Units.reserve(Bytes.size() / 2 + 1);
    for (; Bytes.size() >= 2; Bytes.remove_prefix(2)) {
        const auto Upper = static_cast<std::uint8_t>(Bytes[High]);
        const auto Lower = static_cast<std::uint8_t>(Bytes[1 - High]);
        Units += static_cast<char16_t>(Upper << 8 | Lower);
    }
    if (!Bytes.empty()) {
        Units += static_cast<char16_t>(Replacement);
    }
    return Units;
}

void AppendUTF8(std::string& Text, char32_t Value)
{
    const auto Append = [&Text](char32_t Byte) { Text += static_cast<char>(Byte); };
    const auto Continuation = [Value](int Shift) { return 0x80 | (Value >> Shift & 0x3F); };
    if (Value < 0x80) {
        Append(Value);
    } else if (Value < 0x800) {
        Append(0xC0 | Value >> 6);
        Append(Continuation(0));
    } else if (Value < FirstSupplementary) {
        Append(0xE0 | Value >> 12);
        Append(Continuation(6));
        Append(Continuation(0));
    } else {
        Append(0xF0 | Value >> 18);
        Append(Continuation(12));
        Append(Continuation(6));
        Append(Continuation(0));
    }
}

bool IsHighSurrogate(char16_t Unit)
{
    return Unit >= 0xD800 && Unit <= 0xDBFF;
}

bool IsLowSurrogate(char16_t Unit)
{
    return Unit >= 0xDC00 && Unit <= 0xDFFF;
}

[[noreturn]] void FailToRead(const std::string& Name)
{
    const std::string Reason = std::generic_category().message(errno);
    throw ProgramFailure(WrongUsage, std::string("The script ")
                                         .append(Name)
                                         .append(" cannot be read: ")
                                         .append(Reason)
                                         .append(". Check the path and its permissions."));
}

std::string ReadAll(std::FILE* Stream, const std::string& Name)
{
    std::string Bytes;
    std::array<char, 65536> Block{};
    while (const std::size_t Count = std::fread(Block.data(), 1, Block.size(), Stream)) {
        Bytes.append(Block.data(), Count);
    }
    if (std::ferror(Stream) != 0) {
        FailToRead(Name);
    }
    return Bytes;
}

} // namespace

ScriptFile ReadScriptFile(const std::string& Path)
{
    if (Path == "-") {
        return {"standard input", DecodeScript(ReadAll(stdin, "on the standard input"))};
    }
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> Stream(std::fopen(Path.c_str(), "rb"), std::fclose);
    if (!Stream) {
        FailToRead(Path);
    }
    return {Path, DecodeScript(ReadAll(Stream.get(), Path))};
}

std::u16string DecodeScript(std::string_view Bytes)
{
    using namespace std::string_view_literals;
    if (Bytes.starts_with("\xFF\xFE"sv)) {
        return FromUTF16(Bytes.substr(2), 1);
    }
    if (Bytes.starts_with("\xFE\xFF"sv)) {
        return FromUTF16(Bytes.substr(2), 0);
    }
    return FromUTF8(Bytes.starts_with("\xEF\xBB\xBF"sv) ? Bytes.substr(3) : Bytes);
}

std::string ToUTF8(std::u16string_view Text)
{
    std::string Result;
    for (std::size_t k = 0; k < Text.size(); ++k) {
        const char16_t Unit = Text[k];
        if (IsHighSurrogate(Unit) && k + 1 < Text.size() && IsLowSurrogate(Text[k + 1])) {
            ++k;
            AppendUTF8(Result, FirstSupplementary + ((Unit - 0xD800U) << 10) + (Text[k] - 0xDC00U));
        } else {
            AppendUTF8(Result, IsHighSurrogate(Unit) || IsLowSurrogate(Unit) ? Replacement : Unit);
        }
    }
    return Result;
}

} // namespace Tarvix::Tool
