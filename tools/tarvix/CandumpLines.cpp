#include "tools/tarvix/FramePrinter.h"
#include "tools/tarvix/Text.h"

namespace Tarvix::Tool {

namespace {

class CandumpLines final : public FramePrinter {
public:
    std::string Line(const FrameReport& Frame) const override
    {
        const std::uint8_t Identifier = Frame.Identifier();
        std::string Text = std::string("(").append(Fixed(Frame.Seconds, 6)).append(") lin0 ");
        Text.append(HexBytes({&Identifier, 1})).append("#");
        Text.append(Frame.HasResponse() ? HexBytes(Frame.Data, "") : "R");
        return Text.append("\n");
    }
};

} // namespace

std::unique_ptr<FramePrinter> MakeCandumpLines()
{
    return std::make_unique<CandumpLines>();
}

} // namespace Tarvix::Tool
