/// @file
/// Runs scripts of LIN commands against a master.
///
/// ```
/// // eight commands, each closed by ";"
/// BAUDRATE 19200 BD;                                  // or the bit time in seconds: BAUDRATE 5.208333E-05;
/// BREAK_WIDTH 13;                                     // bit times
/// SYNC_BYTE (55);
/// CHKSUM_MODE LIN2_0;                                 // enhanced; LIN1_3 is classic
/// WAIT 100;                                           // bit times
/// BREAK;
/// WRITE_FRAME ID (20) LEN 2 TX (01 02);               // optionally CHKSUM (DC)
/// READ_FRAME ID (7D) LEN 2 RX (12 34) RXMASK (FF F0); // optionally CHKSUM (3C) CHKSUMMASK (FF)
/// ```
#pragma once

#include "tarvix/common/Error.h" // IWYU pragma: export
#include "tarvix/common/Export.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

namespace Tarvix {

class clsLIN;
class clsLINScriptLexer;

/// Reads and executes a script in one pass: each command acts on the master as soon as its ";" has been read. The first
/// error stops the run and reaches the host unchanged, be it of the interpreter, of the master, of the device or of a
/// handler; what ran before stays done.
class TARVIX_API clsLINScriptInterpreter {
public:
    clsLINScriptInterpreter();
    /// Does not touch the master.
    ~clsLINScriptInterpreter();
    clsLINScriptInterpreter(const clsLINScriptInterpreter&) = delete;
    clsLINScriptInterpreter& operator=(const clsLINScriptInterpreter&) = delete;

    /// The progress event; may be empty. Raised with position 1 at the start, with the position after every line end
    /// that is passed, and with the position after the text when the last command is done, but not after an error.
    /// Positions are 1-based and count UTF-16 code units. It runs on the caller's thread; what it throws stops the
    /// script. A run reports to a copy of the handler that is set when it starts.
    std::function<void(std::int32_t CodePos)> ExecutionProgress;

    /// Attaches the master, which is held, not owned; replaces an earlier one.
    void Initialize(clsLIN& LIN) noexcept { LIN_ = &LIN; }

    /// Runs a script.
    /// @param Script  UTF-16, at most 2^31 - 2 code units
    /// @throws Error  a member of errLINScriptInterpreter; errNotAttached at a command without a master;
    ///                errInvalidArgument when called from inside the progress event of the same interpreter, whose run
    ///                goes on undisturbed; and everything that the master raises
    void ExecuteScript(std::u16string_view Script);
    /// As above for UTF-8, which is converted first: ill-formed bytes become U+FFFD, and positions count UTF-16 code
    /// units.
    void ExecuteScript(std::string_view Script);

    /// The 1-based position of the next UTF-16 code unit to be read: after a failed run, where the interpreter stood.
    /// 0 before the first run.
    std::int32_t CodePos() const noexcept;

    /// Detaches the master, without calling it.
    void Terminate() noexcept { LIN_ = nullptr; }

private:
    struct ScriptToken {
        std::int32_t TokenType;
        std::u16string_view TokenValue;
    };
    struct FrameHead {
        std::uint8_t ID;
        std::int32_t Length;
    };
    struct ByteStream {
        std::int32_t Count = 0;
        std::vector<std::uint8_t> Bytes;
    };
    class SingleRun;

    void ExecuteInput();
    void RaiseProgress() const;
    void ExecuteCommand(std::int32_t Keyword);
    clsLIN& LIN() const;

    ScriptToken NextToken();
    static bool IsEndOfCommand(const ScriptToken& Token) noexcept;
    static void RequireEndOfCommand(const ScriptToken& Token);
    void RequireKeyword(const ScriptToken& Token, std::int32_t Keyword) const;

    std::int32_t ExpectKeyword(const ScriptToken& Token) const;
    std::int32_t ExpectInteger(const ScriptToken& Token) const;
    float ExpectReal(const ScriptToken& Token) const;
    std::uint8_t ExpectByte(const ScriptToken& Token) const;
    static std::u16string_view ExpectConstant(const ScriptToken& Token);
    ByteStream ExpectByteStream(const ScriptToken& Token) const;

    ScriptToken ReadOnlyParameter();
    FrameHead ReadFrameHead();
    ByteStream ReadDataBytes(std::int32_t Length);

    void ExecuteBaudrate();
    void ExecuteWait();
    void ExecuteBreak();
    void ExecuteBreakWidth();
    void ExecuteSyncByte();
    void ExecuteChecksumMode();
    void ExecuteWriteFrame();
    void ExecuteReadFrame();

    std::unique_ptr<clsLINScriptLexer> Lexer_;
    clsLIN* LIN_ = nullptr;
    std::function<void(std::int32_t)> Progress_;
    bool Running_ = false;
};

} // namespace Tarvix
