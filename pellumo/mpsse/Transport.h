/// @file
/// The byte pipe between the host and an MPSSE chip.
#pragma once

#include <chrono>
#include <cstdint>
#include <span>
#include <string_view>

namespace Pellumo {

/// Carries commands to the chip and answers back. Below it there is a USB chip or an emulated one.
class Transport {
public:
    virtual ~Transport();

    /// Sends all of `Out` and fills all of `In`, both at the same time, so that a chip whose small buffers are full in
    /// one direction is never waited for in the other. Either may be empty.
    /// @param Limit  how long the transfer may take
    /// @throws Tarvix::Error  errUnplugged, errStalled, errTimeout, errShortAnswer, errUSB, errClosed; the chip's state
    ///                        is then unknown
    virtual void Transfer(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In,
                          std::chrono::nanoseconds Limit) = 0;

    /// Throws away what the chip has sent and nobody has read.
    virtual void Purge() = 0;

    /// Switches the engine off and on again, whatever state it is in: it then stands between two commands, all that was
    /// under way is gone in both directions, and the settings are those after a reset.
    virtual void Restart() = 0;

    /// Releases the chip; a second call does nothing.
    virtual void Close() = 0;

    /// The device as its URL names it, for messages.
    virtual std::string_view Name() const noexcept = 0;

protected:
    Transport() = default;
    Transport(const Transport&) = default;
    Transport(Transport&&) = default;
    Transport& operator=(const Transport&) = default;
    Transport& operator=(Transport&&) = default;
};

} // namespace Pellumo
