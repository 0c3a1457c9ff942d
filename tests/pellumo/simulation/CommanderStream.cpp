#include "tests/pellumo/simulation/CommanderStream.h"

#include <ostream>

namespace Pellumo::Testing {

namespace {

int At(std::span<const std::uint8_t> Samples, std::size_t Index)
{
    return Samples[Index / 8] >> Index % 8 & 1;
}

} // namespace

CommanderStream& CommanderStream::Level(std::size_t Samples, int Value)
{
    Data_.resize((Samples_ + Samples + 7) / 8, 0xFF);
    for (; Samples > 0; --Samples, ++Samples_) {
        if (Value == 0) {
            Data_[Samples_ / 8] = static_cast<std::uint8_t>(Data_[Samples_ / 8] & ~(1U << Samples_ % 8));
        }
    }
    return *this;
}

CommanderStream& CommanderStream::Break(std::size_t Samples)
{
    return Level(Samples, 0).Level(SamplesPerBit, 1);
}

CommanderStream& CommanderStream::Byte(std::uint8_t Value)
{
    Level(SamplesPerBit, 0);
    for (int k = 0; k < 8; ++k) {
        Level(SamplesPerBit, Value >> k & 1);
    }
    return Level(SamplesPerBit, 1);
}

CommanderStream& CommanderStream::Header(std::uint8_t ProtectedIdentifier)
{
    return Break().Byte(0x55).Byte(ProtectedIdentifier);
}

CommanderStream& CommanderStream::Idle(std::size_t Bits)
{
    return Level(Bits * SamplesPerBit, 1);
}

CommanderStream& CommanderStream::Request(std::uint8_t ProtectedIdentifier)
{
    return Header(ProtectedIdentifier).Idle(140);
}

CommanderStream& CommanderStream::Frame(std::uint8_t ProtectedIdentifier, const Bytes& Response)
{
    Header(ProtectedIdentifier);
    for (const std::uint8_t Value : Response) {
        Byte(Value);
    }
    return Idle(1);
}

Decoded Decode(std::span<const std::uint8_t> Samples, std::size_t First)
{
    Decoded Result;
    const std::size_t Count = Samples.size() * 8;
    for (std::size_t Edge = FirstDominant(Samples, First); Edge + 76 < Count;
         Edge = FirstDominant(Samples, Edge + 76)) {
        if (At(Samples, Edge + 4) != 0 || At(Samples, Edge + 76) != 1) {
            Result.FramingError = true;
            break;
        }
        unsigned Value = 0;
        for (std::size_t k = 0; k < 8; ++k) {
            Value |= static_cast<unsigned>(At(Samples, Edge + 12 + 8 * k)) << k;
        }
        Result.Received.push_back(static_cast<std::uint8_t>(Value));
    }
    return Result;
}

std::ostream& operator<<(std::ostream& Stream, const Decoded& Value)
{
    for (const int Byte : Value.Received) {
        Stream << std::hex << Byte << std::dec << ' ';
    }
    return Stream << (Value.FramingError ? "framing error" : "");
}

std::size_t FirstDominant(std::span<const std::uint8_t> Samples, std::size_t First)
{
    while (First < Samples.size() * 8 && At(Samples, First) != 0) {
        ++First;
    }
    return First;
}

} // namespace Pellumo::Testing
