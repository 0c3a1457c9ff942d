#include "pellumo/emulation/EmulatedTransport.h"

#include "pellumo/errPellumo.h"
#include "tarvix/common/Raise.h"

#include <utility>

namespace Pellumo {

namespace {

[[noreturn]] void Fail(errPellumo Number, std::string_view Name, std::string_view What)
{
    std::string Text = "The device \"";
    Tarvix::Raise(Number, "EmulatedTransport", Text.append(Name).append("\" ").append(What));
}

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
        std::string What = "answered only ";
        Fail(errPellumo::errTimeout, Name_,
             What.append(std::to_string(Count)).append(" of ").append(std::to_string(In.size())).append(" bytes"));
    }
}

void EmulatedTransport::Purge()
{
    Chip().Purge();
}

void EmulatedTransport::Close()
{
    Chip_.reset();
}

EmulatedChip& EmulatedTransport::Chip() const
{
    if (!Chip_) {
        Fail(errPellumo::errClosed, Name_, "has been closed");
    }
    return *Chip_;
}

} // namespace Pellumo
