#include "pellumo/recording/Recorder.h"

#include "tests/support/Errors.h"
#include "tests/support/FakeDevice.h"

#include <gtest/gtest.h>

#include <memory>

namespace Pellumo {

using Tarvix::Testing::FailureOf;
using Tarvix::Testing::FakeDevice;
using Bytes = std::vector<std::uint8_t>;

namespace {

struct Told {
    Bytes Tx, Rx;
    bool ReadBack;
    double Frequency, EpochSeconds;
    std::int64_t FirstSample;
    std::size_t CallsBefore;
};

struct Listener : SampleListener {
    explicit Listener(const FakeDevice& Device) : Device_(Device) {}
    void OnStream(const SampleStream& Stream) override
    {
        Streams.push_back({{Stream.Tx.begin(), Stream.Tx.end()},
                           {Stream.Rx.begin(), Stream.Rx.end()},
                           Stream.ReadBack,
                           Stream.Frequency,
                           Stream.EpochSeconds,
                           Stream.FirstSample,
                           Device_.Calls.size()});
    }
    std::vector<Told> Streams;

private:
    const FakeDevice& Device_;
};

struct Bench {
    FakeDevice Device;
    Recorder Recording{Device};
    Listener Heard{Device};

    Bench() { Recording.AddListener(Heard); }
    void Send(Bytes Samples) { Recording.SendSamples(Samples, static_cast<std::int32_t>(Samples.size()), 1, 0); }
    Bytes Exchange(Bytes Samples)
    {
        Recording.ExchangeSamples(Samples, static_cast<std::int32_t>(Samples.size()), 1, 0, 0);
        return Samples;
    }
};

const Tarvix::Testing::Failure UnpluggedFailure{7, "Device", "unplugged"};

} // namespace

TEST(Recorder, PassesEveryCallOnWithItsArgumentsAndResults)
{
    Bench Bus;
    Bytes Samples{1, 2, 3};
    Bus.Recording.ConfigurePins(3, 11);
    Bus.Recording.SetOption(0);
    EXPECT_EQ(Bus.Recording.DivisorForFrequency(153600.0), 194);
    EXPECT_EQ(Bus.Recording.FrequencyForDivisor(194), 30e6 / 195);
    Bus.Recording.SetClockDivisor(195);
    Bus.Recording.SendSamples(Samples, 2, 1, 0);
    Bus.Recording.ExchangeSamples(Samples, 3, 1, 0, 1);
    Bus.Recording.Close();
    EXPECT_EQ(Bus.Device.Calls,
              (std::vector<std::string>{"ConfigurePins 3 11", "SetOption 0", "DivisorForFrequency",
                                        "FrequencyForDivisor 194", "SetClockDivisor 195", "FrequencyForDivisor 195",
                                        "SendSamples 2 1 0", "ExchangeSamples 3 1 0 1", "Close"}));
    EXPECT_EQ(Bus.Device.Frequencies, std::vector<double>{153600.0});
}

TEST(Recorder, TellsWhatWentOutAndWhatCameIn)
{
    Bench Bus;
    Bus.Device.Bus = [](std::span<std::uint8_t> Samples) { Samples[1] = 0x0F; };
    Bytes Samples{0x11, 0x22, 0x33};
    Bus.Recording.SendSamples(Samples, 2, 1, 0);
    Bus.Recording.ExchangeSamples(Samples, 2, 1, 0, 0);
    EXPECT_EQ(Samples, (Bytes{0x11, 0x0F, 0x33}));

    ASSERT_EQ(Bus.Heard.Streams.size(), 2U);
    const Told& Sent = Bus.Heard.Streams[0];
    EXPECT_EQ(Sent.Tx, (Bytes{0x11, 0x22})) << "no more than was clocked";
    EXPECT_EQ(Sent.Rx, Sent.Tx);
    EXPECT_FALSE(Sent.ReadBack);
    EXPECT_EQ(Sent.CallsBefore, 1U) << "after the device";
    const Told& Exchanged = Bus.Heard.Streams[1];
    EXPECT_EQ(Exchanged.Tx, (Bytes{0x11, 0x22}));
    EXPECT_EQ(Exchanged.Rx, (Bytes{0x11, 0x0F}));
    EXPECT_TRUE(Exchanged.ReadBack);
}

TEST(Recorder, TellsListenersInTheOrderInWhichTheyCame)
{
    struct Named : SampleListener {
        Named(std::string& Order, char Name) : Order_(Order), Name_(Name) {}
        void OnStream(const SampleStream& /*Stream*/) override { Order_ += Name_; }
        std::string& Order_;
        char Name_;
    };
    FakeDevice Device;
    Recorder Recording(Device);
    std::string Order;
    Named First(Order, 'a');
    Named Second(Order, 'b');
    Recording.AddListener(First);
    Recording.AddListener(Second);
    Recording.SendSamples(Bytes{0xFF}, 1, 1, 0);
    Recording.SendSamples(Bytes{0xFF}, 1, 1, 0);
    EXPECT_EQ(Order, "abab");
}

TEST(Recorder, CountsTimeInSamplesOfTheClockThatTheyHad)
{
    Bench Bus;
    Bus.Send({0xFF});
    EXPECT_EQ(Bus.Recording.Now(), 0.0) << "no clock, no time";

    Bus.Recording.SetClockDivisor(194);
    constexpr int Streams = 100'000;
    for (int i = 0; i < Streams; ++i) {
        Bus.Send({0xFF});
    }
    const double FirstClock = 30e6 / 195;
    EXPECT_EQ(Bus.Heard.Streams[1].FirstSample, 0);
    EXPECT_EQ(Bus.Heard.Streams.back().FirstSample, 8 * (Streams - 1));
    EXPECT_EQ(Bus.Recording.Now(), 8 * Streams / FirstClock) << "to the last bit: nothing added up";

    Bus.Recording.SetClockDivisor(390);
    EXPECT_EQ(Bus.Recording.Now(), 8 * Streams / FirstClock) << "a change takes no time";
    Bus.Exchange({0xFF, 0xFF});
    EXPECT_EQ(Bus.Heard.Streams.back().EpochSeconds, 8 * Streams / FirstClock);
    EXPECT_EQ(Bus.Heard.Streams.back().FirstSample, 0);
    EXPECT_EQ(Bus.Heard.Streams.back().Frequency, 30e6 / 391);
    EXPECT_EQ(Bus.Recording.Now(), 8 * Streams / FirstClock + 16 / (30e6 / 391));
}

TEST(Recorder, DoesNotTellWhatFailed)
{
    Bench Bus;
    Bus.Recording.SetClockDivisor(194);
    Bus.Send({0xFF});
    const double Before = Bus.Recording.Now();
    Bus.Device.BeforeCall = [](std::size_t) { throw Tarvix::Error(7, "Device", "unplugged"); };
    EXPECT_EQ(FailureOf([&] { Bus.Send({0x00}); }), UnpluggedFailure);
    EXPECT_EQ(FailureOf([&] { Bus.Exchange({0x00}); }), UnpluggedFailure);
    EXPECT_EQ(FailureOf([&] { Bus.Recording.SetClockDivisor(390); }), UnpluggedFailure);
    Bus.Device.BeforeCall = nullptr;
    EXPECT_EQ(Bus.Recording.Now(), Before);

    Bus.Send({0xF0});
    ASSERT_EQ(Bus.Heard.Streams.size(), 2U);
    EXPECT_EQ(Bus.Heard.Streams.back().FirstSample, 8);
    EXPECT_EQ(Bus.Heard.Streams.back().Frequency, 30e6 / 195);
}

} // namespace Pellumo
