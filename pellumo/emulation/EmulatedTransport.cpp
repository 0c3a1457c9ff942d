#include "pellumo/emulation/EmulatedTransport.h"

#include "pellumo/errPellumo.h"
#include "pellumo/mpsse/RaiseForDevice.h"

#include <utility>

namespace Pellumo {

namespace {

constexpr std::string_view Source = "EmulatedTransport";

} // namespace

EmulatedTransport::EmulatedTransport(std::shared_ptr<EmulatedChip> Chip, std::string Name)
    : Chip_(std::move(Chip)), Name_(std::move(Name))
{
    Chip_->Reset();
}

void EmulatedTransport::Transfer(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In,
                                 std::chrono::nanoseconds /*Limit*/)
{
    Chip().Write(Out);
    const std::size_t Count = Chip().Read(In);
    if (Count < In.size()) {
        RaiseForDevice(Count == 0 ? errPellumo::errTimeout : errPellumo::errShortAnswer, Source, Name_,
                       std::string("the chip answered only ")
                           .append(std::to_string(Count))
                           .append(" of ")
                           .append(std::to_string(In.size()))
                           .append(" bytes"));
    }
}

void EmulatedTransport::Purge()
{
    Chip().Purge();
}

void EmulatedTransport::Restart()
{
    Chip().Reset();
}

void EmulatedTransport::Close()
{
    Chip_.reset();
}

EmulatedChip& EmulatedTransport::Chip() const
{
    if (!Chip_) {
        RaiseForDevice(errPellumo::errClosed, Source, Name_, "the device has been closed. Open it again to go on");
    }
    return *Chip_;
}

} // namespace Pellumo
