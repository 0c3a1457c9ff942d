#include "tools/tarvix/FrameFailure.h"

#include "pellumo/errPellumo.h"
#include "tools/tarvix/Text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace Tarvix::Tool {

namespace {

template <typename Enum>
constexpr std::int32_t NumberOf(Enum Member)
{
    return static_cast<std::int32_t>(Member);
}

constexpr std::size_t LongestResponse = 9; ///< bytes that the master has room for

constexpr auto FramingError = static_cast<std::int32_t>(0x8004C3F1);
constexpr auto TransmissionCorrupted = static_cast<std::int32_t>(0x8004C3F2);
constexpr auto NoMoreData = static_cast<std::int32_t>(0x8004C419);
constexpr auto MalformedByteLiteral = static_cast<std::int32_t>(0x8004C3DE);

struct Advice {
    std::int32_t Number;
    bool OfFrame; ///< raised after a frame was on the bus
    std::string_view Sentence;
};

using Script = errLINScriptInterpreter;

constexpr std::array Advices = {
    Advice{
        NumberOf(Script::errNoResponse), true,
        "Check that the node is powered and wired, that it answers this identifier, and that the bit rate is right."},
    Advice{NumberOf(Script::errRxDataCheck), true,
           "Compare the frame above with what the script expects, or let RXMASK and CHKSUMMASK leave bits out."},
    Advice{
        NumberOf(errLIN::errChksum), true,
        "If the data looks right, the node uses the other checksum model: try --checksum, or CHKSUM_MODE in a script."},
    Advice{
        NumberOf(errLIN::errResponseLength), true,
        "The count includes the checksum byte; ask for one less than it says, or let \"tarvix scan\" tell the length."},
    Advice{
        NumberOf(errGeneral::errIndexOutOfRange), false,
        "Either more than 9 bytes came (two nodes may answer this identifier, or the bit rate is wrong), or the script "
        "has empty parentheses."},
    Advice{FramingError, true,
           "Check the bit rate, the wiring and the termination; --timing and --vcd show where the bus went wrong."},
    Advice{TransmissionCorrupted, true,
           "The bus did not carry what was sent: check supply, transceiver and wiring, and whether a node talks at the "
           "same time."},
    Advice{NoMoreData, true,
           "A byte began at the very end of the time for the answer: check the bit rate and the node."},
    Advice{NumberOf(Script::errLexical), false, "Close the bytes with \")\" on the line on which they begin."},
    Advice{NumberOf(Script::errEmptyCommand), false, "Delete the \";\" that stands alone."},
    Advice{NumberOf(Script::errTokenType), false,
           "Look at the word above the caret: it is misspelt, missing, or a value of another kind."},
    Advice{NumberOf(Script::errTokenValue), false,
           "Commands are BAUDRATE, WAIT, BREAK, BREAK_WIDTH, SYNC_BYTE, CHKSUM_MODE, WRITE_FRAME and READ_FRAME; "
           "checksum modes are LIN1_3 and LIN2_0."},
    Advice{NumberOf(Script::errByte), false, "Give one byte, as a number from 0 to 255 or in parentheses: (3C)."},
    Advice{NumberOf(Script::errCommandSyntax), false,
           "Check the order of the parameters, and that every command ends with \";\"."},
    Advice{NumberOf(Script::errDataLength), false, "Give as many bytes as LEN says."},
    Advice{MalformedByteLiteral, false, "Write bytes as two hexadecimal digits each: (01 02 A5)."},
    Advice{NumberOf(errLIN::errParameter), false, "A frame carries 1 to 8 data bytes, and a break is wider than 0."},
    Advice{NumberOf(errGeneral::errOverflow), false,
           "A number is too large for its place: bytes end at 255, a WAIT at 32767 bit times."},
    Advice{NumberOf(errGeneral::errDivisionByZero), false, "Give a bit rate above 0."},
    Advice{NumberOf(Pellumo::errPellumo::errFrequency), false, "Choose a bit rate that the device can make."},
};

const Advice* Find(const Error& Failure)
{
    const auto* const Found = std::find_if(Advices.begin(), Advices.end(),
                                           [&Failure](const Advice& One) { return One.Number == Failure.Number(); });
    return Found == Advices.end() ? nullptr : Found;
}

} // namespace

Error NoResponse()
{
    return {NumberOf(Script::errNoResponse), "tarvix", "No response"};
}

bool TellsOf(const Error& Failure, const FrameReport& Frame)
{
    if (Failure.Is(errGeneral::errIndexOutOfRange)) { // empty parentheses in a script raise it, too
        return Frame.Data.size() + (Frame.Checksum ? 1 : 0) > LongestResponse;
    }
    const Advice* const Found = Find(Failure);
    return Found != nullptr && Found->OfFrame;
}

std::string Describe(const Error& Failure)
{
    return Failure.Is(Script::errNoResponse)
               ? Failure.Description() + ": header sent, no response within the 14 byte slots"
               : Failure.Description();
}

std::string_view AdviceFor(const Error& Failure)
{
    const Advice* const Found = Find(Failure);
    return Found == nullptr ? std::string_view{} : Found->Sentence;
}

std::string Headline(const Error& Failure)
{
    std::string Text = Describe(Failure);
    if (Text.ends_with('.')) {
        Text.pop_back();
    }
    return Text.append(" (").append(ErrorNumber(Failure.Number())).append(", ").append(Failure.Source()).append(").");
}

} // namespace Tarvix::Tool
