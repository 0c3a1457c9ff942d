#include "tools/tarvix/FrameFailure.h"
#include "tools/tarvix/FramePrinter.h"
#include "tools/tarvix/Text.h"

#include <nlohmann/json.hpp>

#include <string_view>

namespace Tarvix::Tool {

namespace {

/// `Text` in quotation marks; bytes that are not UTF-8 become U+FFFD.
std::string Quoted(const std::string& Text)
{
    return nlohmann::json(Text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

/// Writes the members of an object. The library's own objects print numbers in their shortest form; here every time has
/// six decimals.
class ObjectWriter {
public:
    /// @param Value  as JSON
    ObjectWriter& Add(std::string_view Name, std::string_view Value)
    {
        Text_.append(Text_.empty() ? "{\"" : ",\"").append(Name).append("\":").append(Value);
        return *this;
    }
    ObjectWriter& AddText(std::string_view Name, const std::string& Value) { return Add(Name, Quoted(Value)); }

    std::string Finish() const { return Text_ + "}"; }

private:
    std::string Text_;
};

std::string TimingObject(const Pellumo::AnswerTiming& Timing)
{
    return ObjectWriter()
        .Add("response_space", Fixed(Timing.ResponseSpace, 3))
        .Add("longest_gap", Fixed(Timing.LongestGap, 3))
        .Add("clock_deviation", Timing.Clock ? Fixed(Timing.Clock->Deviation, 3) : "null")
        .Add("margin", std::to_string(Timing.Margin))
        .Finish();
}

std::string ErrorObject(const Error& Failure)
{
    return ObjectWriter()
        .AddText("number", ErrorNumber(Failure.Number()))
        .AddText("source", Failure.Source())
        .AddText("description", Describe(Failure))
        .Finish();
}

class JSONLines final : public FramePrinter {
public:
    explicit JSONLines(bool Timing) : Timing_(Timing) {}

    std::string Line(const FrameReport& Frame) const override
    {
        ObjectWriter Object;
        Object.Add("time", Fixed(Frame.Seconds, 6))
            .AddText("op", Frame.Operation == FrameOperation::Read ? "read" : "write")
            .AddText("id", HexByte(Frame.Identifier()))
            .AddText("pid", HexByte(Frame.ProtectedIdentifier))
            .Add("data", Frame.HasResponse() ? Quoted(HexBytes(Frame.Data)) : "null")
            .Add("checksum", Frame.Checksum ? Quoted(HexByte(*Frame.Checksum)) : "null")
            .Add("ok", Frame.Failure ? "false" : "true");
        if (Frame.ChecksumModel) {
            Object.Add("length", std::to_string(Frame.Data.size()))
                .AddText("checksum_model", std::string(NameOf(*Frame.ChecksumModel)));
        }
        if (Timing_ && Frame.Timing) {
            Object.Add("timing", TimingObject(*Frame.Timing));
        }
        if (Frame.Failure) {
            Object.Add("error", ErrorObject(*Frame.Failure));
        }
        return Object.Finish() + "\n";
    }

private:
    bool Timing_;
};

} // namespace

std::unique_ptr<FramePrinter> MakeJSONLines(bool Timing)
{
    return std::make_unique<JSONLines>(Timing);
}

} // namespace Tarvix::Tool
