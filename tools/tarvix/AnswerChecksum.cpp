#include "tools/tarvix/AnswerChecksum.h"

namespace Tarvix::Tool {

namespace {

/// The inverted sum with carry, which starts from `Sum`.
std::uint8_t ChecksumFrom(unsigned Sum, std::span<const std::uint8_t> Data)
{
    for (const std::uint8_t Byte : Data) {
        Sum += Byte;
        if (Sum > 0xFF) {
            Sum -= 0xFF;
        }
    }
    return static_cast<std::uint8_t>(~Sum);
}

} // namespace

ChecksumVerdict JudgeChecksum(std::uint8_t ProtectedIdentifier, std::span<const std::uint8_t> Data,
                              std::uint8_t Checksum)
{
    if (Data.empty()) {
        return ChecksumVerdict::Neither;
    }
    if (Checksum == ChecksumFrom(0, Data)) {
        return ChecksumVerdict::Classic;
    }
    return Checksum == ChecksumFrom(ProtectedIdentifier, Data) ? ChecksumVerdict::Enhanced : ChecksumVerdict::Neither;
}

std::string_view NameOf(ChecksumVerdict Verdict)
{
    switch (Verdict) {
    case ChecksumVerdict::Classic: return "classic";
    case ChecksumVerdict::Enhanced: return "enhanced";
    case ChecksumVerdict::Neither: break;
    }
    return "neither";
}

} // namespace Tarvix::Tool
