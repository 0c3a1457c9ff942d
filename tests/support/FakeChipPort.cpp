#include "tests/support/FakeChipPort.h"

#include "pellumo/mpsse/Commands.h"

#include <algorithm>
#include <array>

namespace Pellumo::Testing {

namespace {

constexpr std::array<std::uint8_t, 2> Status = {0x32, 0x60}; // modem lines as after a reset; transmitter empty
constexpr Ticks LatencyAfterReset = std::chrono::milliseconds(16);

} // namespace

void TimedPins::Clock(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In, std::int64_t SampleTicks)
{
    Elapsed_ += Ticks(std::ssize(Out) * 8 * SampleTicks);
    Wires_.Clock(Out, In, SampleTicks);
}

FakeChipPort::FakeChipPort(ChipFamily Family, std::size_t PacketSize, Pins& Wires)
    : PacketSize_(PacketSize), BufferBytes_(FactsOf(Family).BufferBytes), Wires_(Wires), Chip_(Family, Wires_),
      Decoder_(Family), Latency_(LatencyAfterReset)
{
}

void FakeChipPort::SwitchEngine(bool On)
{
    On_ = On;
    Chip_.Reset();
    Decoder_.Reset();
}

void FakeChipPort::PurgeAnswers() noexcept
{
    Chip_.Purge();
    Answers_.clear();
    Flush_ = false;
}

std::size_t FakeChipPort::TakeCommands(std::span<const std::uint8_t> Bytes)
{
    const auto Taken = Bytes.first(std::min(Bytes.size(), BufferBytes_ - Commands_.size()));
    Commands_.insert(Commands_.end(), Taken.begin(), Taken.end());
    return Taken.size();
}

void FakeChipPort::BeginRead(Ticks Now) noexcept
{
    LatencyStart_ = Now;
}

std::optional<std::vector<std::uint8_t>> FakeChipPort::NextPacket(Ticks Now)
{
    const std::size_t Room = PacketSize_ - Status.size();
    if (Answers_.size() < Room && !Flush_ && StatusPackets == 0 && Now < LatencyEnd()) {
        return std::nullopt;
    }
    const std::size_t Available = StatusPackets > 0 ? 0 : Answers_.size();
    const auto Count = static_cast<std::ptrdiff_t>(std::min(Available, Room));
    std::vector<std::uint8_t> Packet(Status.begin(), Status.end());
    Packet.insert(Packet.end(), Answers_.begin(), Answers_.begin() + Count);
    Answers_.erase(Answers_.begin(), Answers_.begin() + Count);
    Flush_ = Flush_ && !Answers_.empty();
    StatusPackets -= std::min<std::size_t>(StatusPackets, 1);
    LatencyStart_ = Now;
    return Packet;
}

bool FakeChipPort::Run(Ticks Now)
{
    bool Moved = false;
    while (BusyUntil_ <= Now) {
        Moved = CollectAnswers() || Moved;
        if (Commands_.empty() || Answers_.size() >= BufferBytes_) {
            break;
        }
        const std::uint8_t Byte = Commands_.front();
        Commands_.pop_front();
        const Ticks Before = Wires_.Elapsed();
        if (On_) {
            Execute(Byte);
        }
        BusyUntil_ = Now + (Wires_.Elapsed() - Before);
        Moved = true;
    }
    return Moved;
}

std::optional<Ticks> FakeChipPort::NextStep(Ticks Now) const noexcept
{
    return BusyUntil_ > Now ? std::optional(BusyUntil_) : std::nullopt;
}

void FakeChipPort::Execute(std::uint8_t Byte)
{
    std::span<const std::uint8_t> Rest(&Byte, 1);
    Chip_.Write(Rest);
    const auto Piece = Decoder_.Next(Rest);
    FlushWhenDone_ = Piece && Piece->Head.Opcode == Commands::SendImmediate;
}

// The answer to a byte is there when the byte has left the pins. True when there is one, or a command to flush.
bool FakeChipPort::CollectAnswers()
{
    std::vector<std::uint8_t> Fresh(Chip_.Pending());
    Chip_.Read(Fresh);
    const std::size_t Lost = std::min(AnswersToLose, Fresh.size());
    AnswersToLose -= Lost;
    Answers_.insert(Answers_.end(), Fresh.begin() + static_cast<std::ptrdiff_t>(Lost), Fresh.end());
    Flush_ = (Flush_ || FlushWhenDone_) && !Answers_.empty();
    const bool Moved = !Fresh.empty() || FlushWhenDone_;
    FlushWhenDone_ = false;
    return Moved;
}

} // namespace Pellumo::Testing
