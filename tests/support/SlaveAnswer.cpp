#include "tests/support/SlaveAnswer.h"

#include <cstddef>
#include <utility>

namespace Tarvix::Testing {

void SetSamples(std::span<std::uint8_t> Stream, std::int32_t First, std::int32_t Count, int Value)
{
    for (std::int32_t n = First; n < First + Count; ++n) {
        auto& Byte = Stream[static_cast<std::size_t>(n / 8)];
        Byte = static_cast<std::uint8_t>(Value == 1 ? Byte | 1 << n % 8 : Byte & ~(1 << n % 8));
    }
}

BusFunction Answering(std::vector<std::uint8_t> Answer, std::int32_t First)
{
    return [Answer = std::move(Answer), First](std::span<std::uint8_t> Stream) {
        std::int32_t Sample = First;
        for (const std::uint8_t Byte : Answer) {
            SetSamples(Stream, Sample, 8, 0);
            for (int k = 0; k < 8; ++k) {
                SetSamples(Stream, Sample + 8 + 8 * k, 8, Byte >> k & 1);
            }
            SetSamples(Stream, Sample + 72, 8, 1);
            Sample += 80;
        }
    };
}

} // namespace Tarvix::Testing
