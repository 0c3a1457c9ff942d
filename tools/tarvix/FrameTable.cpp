#include "tools/tarvix/FrameFailure.h"
#include "tools/tarvix/FramePrinter.h"
#include "tools/tarvix/Text.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace Tarvix::Tool {

namespace {

struct Column {
    std::string_view Title;
    std::size_t Width;
    bool AlignRight;
    std::string (*Cell)(const FrameReport& Frame);
};

constexpr const char* Nothing = "-";

std::string Time(const FrameReport& Frame)
{
    return Fixed(Frame.Seconds, 6);
}

std::string Operation(const FrameReport& Frame)
{
    return Frame.Operation == FrameOperation::Read ? "read" : "write";
}

std::string Identifier(const FrameReport& Frame)
{
    return HexByte(Frame.Identifier());
}

std::string ProtectedIdentifier(const FrameReport& Frame)
{
    return HexByte(Frame.ProtectedIdentifier);
}

std::string Data(const FrameReport& Frame)
{
    return Frame.Data.empty() ? Nothing : HexBytes(Frame.Data);
}

std::string Checksum(const FrameReport& Frame)
{
    return Frame.Checksum ? HexByte(*Frame.Checksum) : Nothing;
}

std::string Length(const FrameReport& Frame)
{
    return std::to_string(Frame.Data.size());
}

std::string Model(const FrameReport& Frame)
{
    return Frame.ChecksumModel ? std::string(NameOf(*Frame.ChecksumModel)) : Nothing;
}

std::string ResponseSpace(const FrameReport& Frame)
{
    return Frame.Timing ? Fixed(Frame.Timing->ResponseSpace, 2) : Nothing;
}

std::string LongestGap(const FrameReport& Frame)
{
    return Frame.Timing ? Fixed(Frame.Timing->LongestGap, 2) : Nothing;
}

std::string ClockDeviation(const FrameReport& Frame)
{
    if (!Frame.Timing || !Frame.Timing->Clock) {
        return Nothing;
    }
    const std::string Percent = Fixed(Frame.Timing->Clock->Deviation, 2);
    const bool IsComplete = Percent.starts_with('-') || Percent == "0.00";
    return std::string(IsComplete ? "" : "+").append(Percent).append("%");
}

std::string Margin(const FrameReport& Frame)
{
    return Frame.Timing ? std::to_string(Frame.Timing->Margin) : Nothing;
}

std::string Result(const FrameReport& Frame)
{
    std::string Text = Frame.Failure ? Describe(*Frame.Failure) : "ok";
    if (*Frame.Remark != '\0') {
        Text.append("; ").append(Frame.Remark);
    }
    return Text;
}

constexpr Column TimeColumn = {"TIME/s", 10, true, Time};
constexpr Column OperationColumn = {"OP", 5, false, Operation};
constexpr Column IdentifierColumn = {"ID", 4, false, Identifier};
constexpr Column ProtectedColumn = {"PID", 4, false, ProtectedIdentifier};
constexpr Column LengthColumn = {"LEN", 3, true, Length};
constexpr Column ModelColumn = {"MODEL", 8, false, Model};
constexpr Column DataColumn = {"DATA", 23, false, Data}; // eight bytes
constexpr Column ChecksumColumn = {"CHECKSUM", 8, false, Checksum};
constexpr Column SpaceColumn = {"SPACE/bit", 9, true, ResponseSpace};
constexpr Column GapColumn = {"GAP/bit", 7, true, LongestGap};
constexpr Column ClockColumn = {"CLOCK", 7, true, ClockDeviation};
constexpr Column MarginColumn = {"MARGIN", 6, true, Margin};
constexpr std::string_view ResultTitle = "RESULT";

constexpr std::string_view Bold = "\x1B[1m";
constexpr std::string_view Red = "\x1B[31m";
constexpr std::string_view Green = "\x1B[32m";
constexpr std::string_view Plain = "\x1B[0m";

std::vector<Column> ColumnsFor(const TableContents& Contents)
{
    std::vector<Column> Columns =
        Contents.Scan
            ? std::vector{IdentifierColumn, ProtectedColumn, LengthColumn, ModelColumn, DataColumn, ChecksumColumn}
            : std::vector{TimeColumn, OperationColumn, IdentifierColumn, ProtectedColumn, DataColumn, ChecksumColumn};
    if (Contents.Timing) {
        for (const Column& One : {SpaceColumn, GapColumn, ClockColumn, MarginColumn}) {
            Columns.push_back(One);
        }
    }
    return Columns;
}

class FrameTable final : public FramePrinter {
public:
    explicit FrameTable(const TableContents& Contents) : Columns_(ColumnsFor(Contents)), Colour_(Contents.Colour) {}

    std::string Head() const override
    {
        std::string Text;
        for (const Column& One : Columns_) {
            Append(Text, One, std::string(One.Title));
        }
        return Painted(Text.append(ResultTitle), Bold).append("\n");
    }

    std::string Line(const FrameReport& Frame) const override
    {
        std::string Text;
        for (const Column& One : Columns_) {
            Append(Text, One, One.Cell(Frame));
        }
        return Text.append(Painted(Result(Frame), Frame.Failure ? Red : Green)).append("\n");
    }

private:
    /// A cell that is too long pushes the others to the right.
    static void Append(std::string& Text, const Column& One, const std::string& Cell)
    {
        const std::string Padding(One.Width > Cell.size() ? One.Width - Cell.size() : 0, ' ');
        Text.append(One.AlignRight ? Padding + Cell : Cell + Padding).append("  ");
    }

    std::string Painted(const std::string& Text, std::string_view Colour) const
    {
        return Colour_ ? std::string(Colour).append(Text).append(Plain) : Text;
    }

    std::vector<Column> Columns_;
    bool Colour_;
};

} // namespace

std::unique_ptr<FramePrinter> MakeTable(const TableContents& Contents)
{
    return std::make_unique<FrameTable>(Contents);
}

} // namespace Tarvix::Tool
