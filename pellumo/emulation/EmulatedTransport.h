/// @file
/// The byte pipe to an emulated chip.
#pragma once

#include "pellumo/emulation/EmulatedChip.h"
#include "pellumo/mpsse/Transport.h"

#include <memory>
#include <string>

namespace Pellumo {

/// Hands commands to an emulated chip and its answers back; nothing is waited for. Answers that do not come end in
/// errTimeout or, when some came, in errShortAnswer, as they would with a real chip.
class EmulatedTransport final : public Transport {
public:
    /// Opens the chip: its engine is switched on anew.
    /// @param Chip  not null; may share the ownership of what the chip is wired to (`std::shared_ptr`'s aliasing
    ///              constructor), which `Close` then lets go
    /// @param Name  the device as its URL names it
    EmulatedTransport(std::shared_ptr<EmulatedChip> Chip, std::string Name);

    void Transfer(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In,
                  std::chrono::nanoseconds Limit) override;
    void Purge() override;
    void Restart() override;
    void Close() override;
    std::string_view Name() const noexcept override { return Name_; }

private:
    EmulatedChip& Chip() const;

    std::shared_ptr<EmulatedChip> Chip_;
    std::string Name_;
};

} // namespace Pellumo
