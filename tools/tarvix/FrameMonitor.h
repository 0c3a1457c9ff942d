/// @file
/// Watches the frames that pass.
#pragma once

#include "pellumo/recording/BusEvent.h"
#include "tools/tarvix/FrameReport.h"

#include <functional>
#include <optional>
#include <utility>

namespace Tarvix::Tool {

/// Makes a report of every frame on the bus. Whether a frame is all right is known only when the operation that caused
/// it has returned, so each frame waits until then: `Settle` says that it was, `Fail` why it was not, and the next
/// event on the bus that it must have been.
class FrameMonitor {
public:
    using Receiver = std::function<void(const FrameReport&)>;

    /// @param OnFrame  called for every frame that is settled or has failed
    explicit FrameMonitor(Receiver OnFrame) : OnFrame_(std::move(OnFrame)) {}

    /// Something happened on the bus.
    void OnEvent(const Pellumo::BusEvent& Event);

    /// The operation of the waiting frame, if there is one, has succeeded.
    void Settle();

    /// An operation has failed: that of the waiting frame, if the failure tells of it; else that frame was all right.
    void Fail(const Error& Failure);

    /// Takes the waiting frame away unreported.
    std::optional<FrameReport> Take() { return std::exchange(Waiting_, std::nullopt); }

    /// True when frames were sent and the bus stayed recessive in all of them: not even a break came back.
    bool HearsNothing() const noexcept { return Sent_ && !Heard_; }

private:
    Receiver OnFrame_;
    std::optional<FrameReport> Waiting_;
    bool Sent_ = false;
    bool Heard_ = false;
};

} // namespace Tarvix::Tool
