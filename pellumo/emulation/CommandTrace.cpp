#include "pellumo/emulation/CommandTrace.h"

#include <array>
#include <string_view>

namespace Pellumo {

namespace {

std::string Hex(std::uint8_t Byte)
{
    constexpr std::string_view Digits = "0123456789ABCDEF";
    return {Digits[Byte >> 4], Digits[Byte & 0x0F]};
}

std::string SetPinsText(std::string_view What, const Command& Head)
{
    std::string Text(What);
    return Text.append(" 0x").append(Hex(Head.Arguments[0])).append(", directions 0x").append(Hex(Head.Arguments[1]));
}

std::string CountText(std::size_t Count, std::string_view Unit)
{
    std::string Text = std::to_string(Count);
    return Text.append(" ").append(Unit).append(Count == 1 ? "" : "s");
}

std::string BitsText(const Command& Head)
{
    return CountText(std::size_t{Head.Arguments[0]} % 8 + 1, "bit");
}

std::string BytesText(const Command& Head)
{
    return CountText(std::size_t{Head.Word()} + 1, "byte");
}

std::string_view EdgeText(const Command& Head, std::uint8_t OnFalling)
{
    return Head.Has(OnFalling) ? "falling edge" : "rising edge";
}

std::string ShiftText(const Command& Head)
{
    std::string Text = "clock ";
    Text.append(Head.Has(Shift::Bits) ? BitsText(Head) : BytesText(Head));
    Text.append(Head.Has(Shift::LSBFirst) ? ", LSB first" : ", MSB first");
    if (Head.Has(Shift::Write)) {
        Text.append(", out on the ").append(EdgeText(Head, Shift::WriteOnFalling));
    }
    if (Head.Has(Shift::WriteTMS)) {
        Text.append(", mode select on the ").append(EdgeText(Head, Shift::WriteOnFalling));
    }
    if (Head.Has(Shift::Read)) {
        Text.append(", in on the ").append(EdgeText(Head, Shift::ReadOnFalling));
    }
    return Text;
}

std::string Words(const Command& Head)
{
    if (!Head.Known) {
        return "no command of this chip";
    }
    if (Head.Shifts()) {
        return ShiftText(Head);
    }
    switch (Head.Opcode) {
    case Commands::SetLowPins: return SetPinsText("set low pins", Head);
    case Commands::SetHighPins: return SetPinsText("set high pins", Head);
    case Commands::ReadLowPins: return "read low pins";
    case Commands::ReadHighPins: return "read high pins";
    case Commands::LoopbackOn: return "loopback on";
    case Commands::LoopbackOff: return "loopback off";
    case Commands::SetDivisor: return std::string("sample clock divisor ").append(std::to_string(Head.Word()));
    case Commands::SendImmediate: return "send answers at once";
    case Commands::DivideBy5Off: return "base clock 60 MHz";
    case Commands::DivideBy5On: return "base clock 12 MHz";
    case Commands::ThreePhaseOn: return "three-phase clocking on";
    case Commands::ThreePhaseOff: return "three-phase clocking off";
    case Commands::ClockBits: return std::string("clock ").append(BitsText(Head)).append(", no data");
    case Commands::ClockBytes: return std::string("clock ").append(BytesText(Head)).append(", no data");
    case Commands::AdaptiveClockingOn: return "adaptive clocking on";
    case Commands::AdaptiveClockingOff: return "adaptive clocking off";
    default: return {};
    }
}

} // namespace

std::string TextOf(const Command& Head)
{
    std::string Line = Hex(Head.Opcode);
    for (std::size_t i = 0; i < Head.ArgumentCount; ++i) {
        Line.append(" ").append(Hex(Head.Arguments[i]));
    }
    if (HasPayload(Head)) {
        Line.append(" ..");
    }
    return Line.append("  ").append(Words(Head));
}

} // namespace Pellumo
