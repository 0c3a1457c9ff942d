/// @file
/// Writes recorded streams as a VCD file (IEEE 1364), which GTKWave, sigrok and others open.
#pragma once

#include "pellumo/Export.h"
#include "pellumo/recording/SampleStream.h"

#include <cstdint>
#include <iosfwd>
#include <span>
#include <string>
#include <string_view>

namespace Pellumo {

/// Shows the streams as two wires of the scope `lin`: `tx`, what the commander drives, and `rx`, the bus as sampled.
/// Time counts in units of 100 ns and starts two bit times, as they are at the first change, before the first stream,
/// so that the file begins with an idle bus; it ends 24 bit times or more after the last change, so that decoders see
/// the last frame end.
///
/// Each stream is written at once; memory is constant. Streams without a known clock are left out. Whether everything
/// could be written is told by the output stream's state.
class PELLUMO_API VCDWriter : public SampleListener {
public:
    /// Writes the head of the file.
    /// @param Out  held, not owned; to be opened in binary mode
    explicit VCDWriter(std::ostream& Out);
    /// Finishes the file if `Finish` did not; a failure is swallowed.
    ~VCDWriter() override;
    VCDWriter(const VCDWriter&) = delete;
    VCDWriter& operator=(const VCDWriter&) = delete;

    void OnStream(const SampleStream& Stream) override;

    /// Ends the file with a last time stamp. Streams after it are left out.
    void Finish();

private:
    struct Wire {
        char Code = 0; // stands for the wire in the file
        std::uint64_t Samples = 0;
        bool IsHigh = true; // the last sample

        std::uint64_t Load(std::span<const std::uint8_t> Bytes) noexcept;
        char* PutChange(char* To, std::uint64_t Changes, int k) const noexcept;
    };
    char* PutStamp(char* To, std::int64_t Stamp) noexcept;
    void Flush();

    std::ostream& Out_;
    std::string Text_;
    Wire Tx_{'!'};
    Wire Rx_{'"'};
    std::int64_t LeadIn_ = 0;
    std::int64_t LastStamp_ = 0;
    std::int64_t EndStamp_ = 0;
    bool Finished_ = false;
};

/// The text of a GTKWave save file (.gtkw) that opens `DumpFile` with both wires in view.
/// @param DumpFile  path of the VCD file as GTKWave shall look for it
PELLUMO_API std::string GTKWaveSaveFile(std::string_view DumpFile);

} // namespace Pellumo
