/// @file
/// Read-backs in which a slave answers.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace Tarvix::Testing {

/// What a FakeDevice plays back.
using BusFunction = std::function<void(std::span<std::uint8_t>)>;

/// Sets the samples `First` to `First` + `Count` - 1.
void SetSamples(std::span<std::uint8_t> Stream, std::int32_t First, std::int32_t Count, int Value);

/// A slave that sends `Answer`, framed and without pauses, from sample `First` on; the default is the first sample
/// after the header of a frame with a break of 13 bit times.
BusFunction Answering(std::vector<std::uint8_t> Answer, std::int32_t First = 272);

} // namespace Tarvix::Testing
