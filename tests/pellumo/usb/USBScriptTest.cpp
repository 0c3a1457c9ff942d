// Whole scripts over the whole road: interpreter, master, engine, MPSSE device, libftdi and libusb, emulated chip,
// simulated bus, and back.

#include "pellumo/OpenDevice.h"
#include "pellumo/recording/Recorder.h"
#include "pellumo/simulation/ExampleBus.h"
#include "pellumo/simulation/SimulatedBus.h"
#include "tarvix/master/clsLIN.h"
#include "tarvix/script/clsLINScriptInterpreter.h"
#include "tests/pellumo/usb/USBTest.h"

#include <fstream>
#include <iterator>
#include <string>

namespace Pellumo::Testing {
namespace {

/// Keeps what went out and what came in.
class Traffic : public SampleListener {
public:
    Bytes Sent;
    Bytes Read;
    std::size_t Exchanges = 0;

    void OnStream(const SampleStream& Stream) override
    {
        Sent.insert(Sent.end(), Stream.Tx.begin(), Stream.Tx.end());
        Read.insert(Read.end(), Stream.Rx.begin(), Stream.Rx.end());
        Exchanges += Stream.ReadBack ? 1 : 0;
    }
};

std::string Example(const char* Name)
{
    std::ifstream File(std::string(EXAMPLES_FOLDER "/").append(Name));
    return {std::istreambuf_iterator<char>(File), {}};
}

void RunScript(std::string_view URL, std::string_view Script, Traffic& Seen)
{
    const auto Device = OpenDevice(URL);
    Recorder Tap(*Device);
    Tap.AddListener(Seen);
    Tarvix::clsLIN Master;
    Master.Initialize(Tap);
    Tarvix::clsLINScriptInterpreter Interpreter;
    Interpreter.Initialize(Master);
    Interpreter.ExecuteScript(Script);
    Master.Terminate();
}

class USBScripts : public USBTest, public testing::WithParamInterface<const char*> {};

TEST_P(USBScripts, MakeTheSameTrafficAsTheDirectRoad)
{
    const std::string Script = Example(GetParam());
    ASSERT_FALSE(Script.empty());
    Traffic Direct;
    RunScript("sim:", Script, Direct);

    SimulatedBus Bus(ExampleBus());
    FakeUSBDevice& Chip = Usb.Plug(ChipFamily::FT232H, "S", Bus);
    Traffic OverUSB;
    RunScript("ftdi:///1", Script, OverUSB);

    EXPECT_GT(Direct.Exchanges, 0U);
    EXPECT_EQ(OverUSB.Sent, Direct.Sent);
    EXPECT_EQ(OverUSB.Read, Direct.Read);
    // beside the frames, only opening and closing wait for an answer
    EXPECT_EQ(Chip.Reads, Direct.Exchanges + 2);
}
INSTANTIATE_TEST_SUITE_P(Examples, USBScripts, testing::Values("first-frame.lin", "door.lin", "tour.lin"));

} // namespace
} // namespace Pellumo::Testing
