/// @file
/// Wires that echo and remember.
#pragma once

#include "pellumo/emulation/Pins.h"

#include <cstdint>
#include <span>
#include <vector>

namespace Pellumo::Testing {

/// What is driven is read back, except where `PulledLow` has a 1: somebody else drives those samples dominant.
class EchoPins : public Pins {
public:
    struct Call {
        std::vector<std::uint8_t> Out;
        bool Reads;
        std::int64_t SampleTicks;
    };

    /// Every `Clock` in order.
    std::vector<Call> Calls;
    /// Every level set.
    std::vector<int> Levels;
    /// For each byte of the stream, from its first one on; beyond its end nothing is pulled low.
    std::vector<std::uint8_t> PulledLow;

    void Clock(std::span<const std::uint8_t> Out, std::span<std::uint8_t> In, std::int64_t SampleTicks) override
    {
        Calls.push_back({{Out.begin(), Out.end()}, !In.empty(), SampleTicks});
        for (std::size_t i = 0; i < Out.size(); ++i, ++Position_) {
            const std::uint8_t Low = Position_ < PulledLow.size() ? PulledLow[Position_] : std::uint8_t{0};
            if (!In.empty()) {
                In[i] = static_cast<std::uint8_t>(Out[i] & ~Low);
            }
        }
    }

    void SetLevel(int Level) override { Levels.push_back(Level); }

    /// Every byte driven, as one stream.
    std::vector<std::uint8_t> Stream() const
    {
        std::vector<std::uint8_t> All;
        for (const Call& Each : Calls) {
            All.insert(All.end(), Each.Out.begin(), Each.Out.end());
        }
        return All;
    }

private:
    std::size_t Position_ = 0;
};

} // namespace Pellumo::Testing
