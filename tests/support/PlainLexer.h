/// @file
/// The lexical rules of the script language, character by character and as slow as they are told: what the lexer's
/// tests compare it with.
#pragma once

#include "tarvix/script/LINScript.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Tarvix::Testing {

struct PlainToken {
    std::int32_t Type;
    std::u16string Value; ///< empty for `ettOpenByteStream`, whose value has no meaning
    std::int32_t ScanPos; ///< after the token

    bool operator==(const PlainToken&) const = default;
};

class PlainLexer {
public:
    explicit PlainLexer(std::u16string Input) : Input_(std::move(Input)) {}

    /// All tokens, the `ettNothing` at the end included.
    std::vector<PlainToken> Tokens()
    {
        std::vector<PlainToken> All;
        do {
            All.push_back(GetToken());
        } while (All.back().Type != ettNothing);
        return All;
    }

private:
    PlainToken GetToken()
    {
        while (InText(Pos_) && At(Pos_) <= 32 && EndOfLineLength(Pos_) == 0) {
            ++Pos_;
        }
        if (!InText(Pos_)) {
            return {ettNothing, {}, static_cast<std::int32_t>(Pos_)};
        }
        bool Flag = false;
        if (const std::size_t Length = EndOfLineLength(Pos_)) {
            return Take(ettEndOfLine, Length, 0, 0);
        }
        if (const std::size_t Length = IdentifierLength()) {
            return Take(IsKeyword(Input_.substr(Pos_ - 1, Length)) ? ettKeyword : ettConstant, Length, 0, 0);
        }
        if (const std::size_t Length = NumberLength(Flag)) {
            return Take(Flag ? ettReal : ettInteger, Length, 0, 0);
        }
        if (const std::size_t Length = ByteStreamLength(Flag)) {
            return Flag ? Take(ettByteStream, Length, 1, 1) : Take(ettOpenByteStream, Length, Length, 0);
        }
        if (At(Pos_) == ';') {
            return Take(ettEndOfCommand, 1, 0, 0);
        }
        if (const std::size_t Length = CommentLength()) {
            return Take(ettComment, Length, 2, 0);
        }
        return Take(ettUnknown, UnknownLength(), 0, 0);
    }

    PlainToken Take(std::int32_t Type, std::size_t Length, std::size_t DropFront, std::size_t DropBack)
    {
        std::u16string Value = Input_.substr(Pos_ - 1 + DropFront, Length - DropFront - DropBack);
        Pos_ += Length;
        return {Type, std::move(Value), static_cast<std::int32_t>(Pos_)};
    }

    bool InText(std::size_t Position) const { return Position <= Input_.size(); }
    char16_t At(std::size_t Position) const { return Input_.at(Position - 1); }

    std::size_t EndOfLineLength(std::size_t Position) const
    {
        if (InText(Position + 1) && At(Position) == 13 && At(Position + 1) == 10) {
            return 2;
        }
        return InText(Position) && At(Position) == 10 ? 1 : 0;
    }

    static bool IsIdentifierStart(char16_t C)
    {
        return (C >= 'a' && C <= 'z') || (C >= 'A' && C <= 'Z') || C == '_' || C > 127;
    }

    static bool IsDigit(char16_t C) { return C >= '0' && C <= '9'; }

    std::size_t IdentifierLength() const
    {
        std::size_t Position = Pos_;
        while (InText(Position) && (IsIdentifierStart(At(Position)) || (Position > Pos_ && IsDigit(At(Position))))) {
            ++Position;
        }
        return Position - Pos_;
    }

    static bool IsKeyword(std::u16string Word)
    {
        for (char16_t& C : Word) {
            C = C >= 'a' && C <= 'z' ? static_cast<char16_t>(C - 32) : C;
        }
        return std::any_of(KeywordTable.begin(), KeywordTable.end(), [&Word](std::string_view Keyword) {
            return Word == std::u16string(Keyword.begin(), Keyword.end());
        });
    }

    std::size_t NumberLength(bool& Real) const
    {
        bool PointSeen = false;
        bool ExponentSeen = false;
        bool DigitSeen = false;
        std::size_t ExponentPosition = 0;
        std::size_t Position = Pos_;
        for (; InText(Position); ++Position) {
            const char16_t C = At(Position);
            if (C == '.') {
                if (PointSeen || ExponentSeen) {
                    return 0;
                }
                PointSeen = true;
            } else if (C == 'e' || C == 'E') {
                if (!DigitSeen || ExponentSeen) {
                    return 0;
                }
                ExponentSeen = true;
                DigitSeen = false;
                ExponentPosition = Position;
            } else if (C == '+' || C == '-') {
                if (!ExponentSeen || Position != ExponentPosition + 1) {
                    break;
                }
            } else if (IsDigit(C)) {
                DigitSeen = true;
            } else {
                break;
            }
        }
        Real = PointSeen || ExponentSeen;
        return DigitSeen ? Position - Pos_ : 0;
    }

    std::size_t ByteStreamLength(bool& Closed) const
    {
        Closed = false;
        if (At(Pos_) != '(') {
            return 0;
        }
        std::size_t Position = Pos_ + 1;
        while (InText(Position) && EndOfLineLength(Position) == 0) {
            ++Position;
            if (At(Position - 1) == ')') {
                Closed = true;
                break;
            }
        }
        return Position - Pos_;
    }

    std::size_t CommentLength() const
    {
        if (At(Pos_) != '/' || !InText(Pos_ + 1) || At(Pos_ + 1) != '/') {
            return 0;
        }
        std::size_t Position = Pos_ + 2;
        while (InText(Position) && EndOfLineLength(Position) == 0) {
            ++Position;
        }
        return Position - Pos_;
    }

    std::size_t UnknownLength() const
    {
        std::size_t Position = Pos_;
        while (InText(Position) && At(Position) > 32) {
            ++Position;
        }
        return Position - Pos_;
    }

    std::u16string Input_;
    std::size_t Pos_ = 1;
};

} // namespace Tarvix::Testing
