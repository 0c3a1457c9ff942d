#include "pellumo/recording/VCDWriter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <ostream>

namespace Pellumo {

namespace {

constexpr double StampsPerSecond = 1e7;
constexpr double SamplesPerBit = 8.0;
constexpr double IdleBitsBefore = 2.0;
constexpr double IdleBitsAfter = 24.0;
constexpr std::size_t LineSize = 32; // a time stamp of up to 20 digits and two changes
constexpr std::size_t FlushSize = std::size_t{1} << 16U;

constexpr std::string_view Head = "$timescale 100 ns $end\n"
                                  "$scope module lin $end\n"
                                  "$var wire 1 ! tx $end\n"
                                  "$var wire 1 \" rx $end\n"
                                  "$upscope $end\n"
                                  "$enddefinitions $end\n"
                                  "#0\n"
                                  "$dumpvars\n"
                                  "1!\n"
                                  "1\"\n"
                                  "$end\n";

/// Up to eight bytes as a word, the first sample in bit 0.
std::uint64_t LoadSamples(std::span<const std::uint8_t> Bytes) noexcept
{
    std::uint64_t Word = 0;
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(&Word, Bytes.data(), Bytes.size());
    } else {
        for (std::size_t k = 0; k < Bytes.size(); ++k) {
            Word |= std::uint64_t{Bytes[k]} << 8 * k;
        }
    }
    return Word;
}

std::int64_t DurationOf(double Bits, double Frequency) noexcept
{
    return static_cast<std::int64_t>(std::ceil(Bits * SamplesPerBit / Frequency * StampsPerSecond));
}

} // namespace

/// Takes up to eight bytes.
/// @return a 1 for every sample in them that differs from the one before it
std::uint64_t VCDWriter::Wire::Load(std::span<const std::uint8_t> Bytes) noexcept
{
    const std::size_t Beyond = 64 - 8 * Bytes.size();
    Samples = LoadSamples(Bytes);
    const std::uint64_t Changes = Samples ^ (Samples << 1 | (IsHigh ? 1U : 0U));
    IsHigh = (Samples << Beyond) >> 63 != 0;
    return Changes << Beyond >> Beyond;
}

/// Puts down the level of sample `k` when it is one of the changes.
char* VCDWriter::Wire::PutChange(char* To, std::uint64_t Changes, int k) const noexcept
{
    if ((Changes >> k & 1) != 0) {
        *To++ = (Samples >> k & 1) != 0 ? '1' : '0';
        *To++ = Code;
        *To++ = '\n';
    }
    return To;
}

VCDWriter::VCDWriter(std::ostream& Out) : Out_(Out), Text_(Head)
{
    Flush();
}

VCDWriter::~VCDWriter()
{
    try {
        Finish();
    } catch (...) { // NOLINT(bugprone-empty-catch): a destructor cannot tell; the state of the output stream does
    }
}

void VCDWriter::OnStream(const SampleStream& Stream)
{
    if (Finished_ || !(Stream.Frequency > 0.0)) {
        return;
    }
    if (LastStamp_ == 0) { // nothing has changed yet: the bit time of the first change counts
        LeadIn_ = DurationOf(IdleBitsBefore, Stream.Frequency);
    }
    const std::int64_t Trailing = DurationOf(IdleBitsAfter, Stream.Frequency);
    const auto StampOf = [this, &Stream](std::size_t Sample) {
        const double Seconds = Stream.Seconds(static_cast<std::int64_t>(Sample));
        return std::int64_t{LeadIn_ + std::llround(Seconds * StampsPerSecond)};
    };
    for (std::size_t First = 0; First < Stream.Tx.size(); First += 8) {
        const std::size_t Count = std::min<std::size_t>(8, Stream.Tx.size() - First);
        const std::uint64_t TxChanges = Tx_.Load(Stream.Tx.subspan(First, Count));
        const std::uint64_t RxChanges = Rx_.Load(Stream.Rx.subspan(First, Count));
        for (std::uint64_t Changes = TxChanges | RxChanges; Changes != 0; Changes &= Changes - 1) {
            const int k = std::countr_zero(Changes);
            std::array<char, LineSize> Lines{};
            char* End = PutStamp(Lines.data(), StampOf(8 * First + static_cast<std::size_t>(k)));
            End = Tx_.PutChange(End, TxChanges, k);
            End = Rx_.PutChange(End, RxChanges, k);
            Text_.append(Lines.data(), End);
            EndStamp_ = LastStamp_ + Trailing;
        }
        if (Text_.size() >= FlushSize) {
            Flush();
        }
    }
    EndStamp_ = std::max(EndStamp_, StampOf(8 * Stream.Tx.size()));
    Flush();
}

void VCDWriter::Finish()
{
    if (!Finished_) {
        Finished_ = true;
        LastStamp_ = -1;
        std::array<char, LineSize> Line{};
        Text_.append(Line.data(), PutStamp(Line.data(), std::max<std::int64_t>(EndStamp_, 1)));
        Flush();
        Out_.flush();
    }
}

/// Starts the changes of another moment. Samples of less than 100 ns share moments.
char* VCDWriter::PutStamp(char* To, std::int64_t Stamp) noexcept
{
    if (Stamp != LastStamp_) {
        LastStamp_ = Stamp;
        *To++ = '#';
        To = std::to_chars(To, To + 20, Stamp).ptr;
        *To++ = '\n';
    }
    return To;
}

void VCDWriter::Flush()
{
    Out_.write(Text_.data(), static_cast<std::streamsize>(Text_.size()));
    Text_.clear();
}

std::string GTKWaveSaveFile(std::string_view DumpFile)
{
    return std::string("[dumpfile] \"").append(DumpFile).append("\"\n[timestart] 0\n@28\nlin.tx\nlin.rx\n");
}

} // namespace Pellumo
