#include "tools/tarvix/BusSession.h"
#include "tools/tarvix/Commands.h"
#include "tools/tarvix/FrameFailure.h"
#include "tools/tarvix/Text.h"

#include <functional>

namespace Tarvix::Tool {

namespace {

/// Runs one frame operation and tells how it went.
/// @param What  of the message, for example "Reading 0x3D failed: "
int RunFrame(const BusOptions& Options, const std::string& What, const std::function<void(clsLIN&)>& Operation)
{
    return WithBus(Options, false, [&](BusSession& Session) {
        try {
            Operation(Session.Master());
        } catch (const Error& Failure) {
            Session.Frames().Fail(Failure);
            std::string Text = What + Headline(Failure);
            Session.Output().Complain(Text.append("\n").append(AdviceFor(Failure)));
            return SomethingFailed;
        }
        Session.Frames().Settle();
        return AllWell;
    });
}

} // namespace

int Execute(const WriteArguments& Arguments)
{
    const std::string What = "Writing " + HexByte(Arguments.Identifier) + " failed: ";
    return RunFrame(Arguments.Bus, What, [&Arguments](clsLIN& Master) {
        Master.WriteFrame(clsLIN::ComputeIDParity(Arguments.Identifier),
                          static_cast<std::int32_t>(Arguments.Data.size()), Arguments.Data);
    });
}

int Execute(const ReadArguments& Arguments)
{
    const std::string What = "Reading " + HexByte(Arguments.Identifier) + " failed: ";
    return RunFrame(Arguments.Bus, What, [&Arguments](clsLIN& Master) {
        if (!Master.ReadFrame(clsLIN::ComputeIDParity(Arguments.Identifier), Arguments.Length)) {
            throw NoResponse();
        }
    });
}

} // namespace Tarvix::Tool
