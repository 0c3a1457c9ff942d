/// @file
/// The commander (master) of one LIN bus.
///
/// ```cpp
/// auto Device = Pellumo::OpenDevice("sim:");
/// Tarvix::clsLIN Master;
/// Master.Initialize(*Device);
/// Master.BaudrateBd(19200);
/// if (Master.ReadFrame(Tarvix::clsLIN::ComputeIDParity(0x3D), 2)) {
///     use(Master.Data(), Master.DataLength());
/// }
/// Master.Terminate();
/// ```
///
/// Every operation runs to completion on the caller's thread; one master serves one caller at a time, and masters share
/// nothing. Nothing is checked beyond what each operation says; failures of the device and of the log object reach the
/// caller as they were thrown, whatever their type.
///
/// With a log object attached, every operation that changes the configuration or the bus also delivers one script line
/// to it, after its own work has succeeded: a failing log object leaves that work done.
///
/// Frames, waits and breaks allocate no memory once frames of that size have been exchanged (the log apart).
#pragma once

#include "tarvix/common/Error.h" // IWYU pragma: export
#include "tarvix/common/Export.h"
#include "tarvix/common/Variant.h"
#include "tarvix/common/eLINChecksumMode.h"
#include "tarvix/script/icLog.h"
#include "tarvix/signalling/FTDIMPSSE.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace Tarvix {

class clsLINScriptSynthesizer;
class clsLINViaFTDIMPSSE;

/// A LIN commander. A new one has a break of 13 bit times, sync byte 0x55, the enhanced checksum, no log, no frame data
/// and no bit rate: set one before the first bus operation.
///
/// What needs the device before `Initialize`, or the engine after `Terminate`, raises errNotAttached.
class TARVIX_API clsLIN {
public:
    clsLIN();
    /// Does not close the device: that is `Terminate`'s work.
    ~clsLIN();
    clsLIN(const clsLIN&) = delete;
    clsLIN& operator=(const clsLIN&) = delete;

    /// Attaches the device and sets up its pins and mode. It is held, not owned: it must outlive the master or its
    /// `Terminate`. May be called again with another device. When the set-up fails, the device stays attached.
    /// @throws Error  errNotAttached after `Terminate`: for another use make a new master
    void Initialize(FTDIMPSSE& Device);

    // -- configuration

    /// The attached log object, or nullptr.
    icLog* Log() const noexcept { return Log_; }
    /// Attaches a log object, which is held, not owned; nullptr ends the logging. Writes no line.
    void Log(icLog* Value) noexcept { Log_ = Value; }

    /// Seconds per bit as the device really achieves it; 0 before a bit rate was set.
    /// @throws Error  errNotAttached after `Terminate`
    float BaudrateTbit() const;
    /// Sets the bit time and logs it.
    /// @param Value   seconds per bit; what the device cannot do, it refuses
    /// @throws Error  errDivisionByZero for 0 and for what becomes 0 when divided by 8
    void BaudrateTbit(float Value);
    /// Bits per second as the device really achieves them, rounded half to even.
    /// @throws Error  errDivisionByZero before a bit rate was set, errOverflow, errNotAttached after `Terminate`
    std::int32_t BaudrateBd() const;
    /// Sets the bit rate and logs it.
    /// @param Value   bits per second
    /// @throws Error  errDivisionByZero for 0
    void BaudrateBd(std::int32_t Value);

    /// Break width in bit times, a multiple of 1/8.
    float BreakWidth() const noexcept;
    /// Sets the break width, rounded half to even to eighths of a bit time, and logs it as given.
    /// @param Tbits   bit times, above 0
    /// @throws Error  errParameter "Invalid parameter" for 0, less, or not a number; errOverflow; the old width stays
    void BreakWidth(float Tbits);

    /// The sync field that follows the break of a frame.
    std::uint8_t SyncByte() const noexcept { return SyncByte_; }
    /// Sets the sync field and logs it. Slaves expect 0x55; any other value is for testing them.
    void SyncByte(std::uint8_t Value);

    /// The checksum model, an `eLINChecksumMode`.
    std::int32_t ChecksumMode() const noexcept { return ChecksumMode_; }
    /// Sets the checksum model and logs it.
    /// @throws Error  errParameter "Invalid parameter" for anything but 0 and 1; the old mode stays
    void ChecksumMode(std::int32_t Value);

    // -- the last frame

    /// Identifier byte of the last frame operation, as it went on the bus. It is readable after a read without an
    /// answer, too.
    /// @throws Error  errNoData "No data available"
    std::uint8_t ID() const;
    /// Data bytes of the last frame, the checksum not counted.
    /// @throws Error  errNoData "No data available"
    std::int32_t DataLength() const;
    /// The frame buffer: `DataLength` data bytes, the checksum, and whatever earlier frames left behind that.
    /// @throws Error  errNoData "No data available"
    std::array<std::uint8_t, 9> Data() const;
    /// Checksum of the last frame as it was on the bus: its last byte.
    /// @throws Error  errNoData "No data available"
    std::uint8_t Checksum() const;
    /// The data bytes of the last frame as an array of bytes.
    /// @throws Error  errNoData "No data available"
    Variant Data2() const;

    // -- bus operations

    /// Keeps the bus recessive and logs it.
    /// @param Tbits   bit times
    /// @throws Error  errInvalidArgument for a negative count; nothing is sent
    void Wait(std::int16_t Tbits);
    /// Puts a break of the configured width and its delimiter on the bus and logs it.
    void GenerateBreak();

    /// Sends a frame and proves by reading back that the bus carried it; logs it.
    ///
    /// After a failure past the length check there is no frame data.
    /// @param IDbyte      goes on the bus as it is: `ComputeIDParity` makes a protected identifier
    /// @param DataLength  1 to 8
    /// @param TxData      the data bytes, at least that many
    /// @param Chksum      sent in place of the computed checksum, a wrong one included: a number 0 to 255
    /// @throws Error  before anything is sent: errParameter "Invalid number of data bytes", errIndexOutOfRange,
    ///                errTypeMismatch, errOverflow; after the frame was on the bus, with the source
    ///                "clsLINViaFTDIMPSSE" or "clsOversamplingBuffer": 0x8004C3F1 "Framing error",
    ///                0x8004C3F2 "Transmission corrupted, Tx <> Rx",
    ///                0x8004C419 "Cannot sample input signal, no more data"
    void WriteFrame(std::uint8_t IDbyte, std::int32_t DataLength, std::span<const std::uint8_t> TxData,
                    const std::optional<Variant>& Chksum = std::nullopt);
    /// Sends a header and reads the answer of a slave; logs the request when an answer of the expected length came.
    ///
    /// After an answer of any length its bytes are readable, also when the operation fails; after a failure of the
    /// exchange itself there is no frame data.
    /// @param IDbyte          goes on the bus as it is: `ComputeIDParity` makes a protected identifier
    /// @param ExpectedLength  data bytes expected, 1 to 8
    /// @param ChksumCheck     whether to compare the checksum
    /// @return True when an answer came, false when none did
    /// @throws Error  errParameter "Invalid number of data bytes"; errResponseLength; errChksum "Rx checksum error";
    ///                those of decoding, as in `WriteFrame`; errIndexOutOfRange when more than 9 bytes came
    bool ReadFrame(std::uint8_t IDbyte, std::int32_t ExpectedLength, bool ChksumCheck = true);

    /// True when the last frame's checksum equals `ExpectedChecksum` in every bit that is 1 in `ChecksumMask`.
    /// @throws Error  errNoData "No data available"
    bool CheckChksum(std::uint8_t ExpectedChecksum, std::uint8_t ChecksumMask) const;
    /// True when each data byte of the last frame equals the expected one in every bit that is 1 in its mask byte.
    /// @throws Error  errNoData "No data available"; errDataLength "Data length mismatch" when the last frame has
    ///                another length; errIndexOutOfRange when an array is shorter than the frame
    bool CheckData(std::int32_t ExpectedDataLength, std::span<const std::uint8_t> ExpectedData,
                   std::span<const std::uint8_t> DataMask) const;

    /// As `WriteFrame`, with the data as an array of numbers 0 to 255.
    /// @throws Error  errTypeMismatch, errIndexOutOfRange, errOverflow of the conversion before anything else
    void WriteFrame2(std::uint8_t IDbyte, std::int32_t DataLength, const Variant& TxData2,
                     const std::optional<Variant>& Chksum = std::nullopt);
    /// As `CheckData`, with arrays of numbers 0 to 255.
    /// @throws Error  errTypeMismatch, errIndexOutOfRange, errOverflow of the conversion before anything else
    bool CheckData2(std::int32_t ExpectedDataLength, const Variant& ExpectedData2, const Variant& DataMask2) const;

    /// The protected identifier of `ID`: bits 0 to 5 kept, the parity bits P0 and P1 in bits 6 and 7.
    static std::uint8_t ComputeIDParity(std::uint8_t ID) noexcept;

    /// Ends the use of the bus: releases the engine, closes the device, drops the device and the log. The
    /// configuration, all but the bit rate, and the last frame stay readable. A second call does nothing. When closing
    /// fails, device and log stay attached, so that it can be called again.
    void Terminate();

private:
    clsLINViaFTDIMPSSE& Engine() const;
    std::uint8_t ComputeChecksum(std::uint8_t IDbyte, std::int32_t DataLength,
                                 std::span<const std::uint8_t> Bytes) const;

    FTDIMPSSE* Device_ = nullptr;
    std::unique_ptr<clsLINViaFTDIMPSSE> Engine_;
    std::unique_ptr<clsLINScriptSynthesizer> Synthesizer_;
    icLog* Log_ = nullptr;
    std::int32_t BreakSamples_ = 104;
    std::uint8_t SyncByte_ = 0x55;
    std::int32_t ChecksumMode_ = elcLIN20;

    // The frame record. The buffer is never cleared: what lies beyond the count is of earlier frames.
    std::uint8_t FrameID_ = 0;
    bool FrameIDValid_ = false;
    std::array<std::uint8_t, 9> FrameBuffer_{};
    std::int32_t FrameByteCount_ = 0;
};

} // namespace Tarvix
