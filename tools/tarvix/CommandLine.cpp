#include "tools/tarvix/CommandLine.h"

#include "tarvix/master/Process.h"
#include "tools/tarvix/ArgumentValues.h"
#include "tools/tarvix/FileClash.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>

namespace Tarvix::Tool {

namespace {

constexpr const char* MainExamples = "Examples:\n"
                                     "  tarvix read 3D 2                    ask the simulated door for two bytes\n"
                                     "  tarvix write 20 01 02 -d ftdi:///1  send a frame through the first chip found\n"
                                     "  tarvix run door.lin --vcd door.vcd  run a script and keep the waveform\n"
                                     "  tarvix COMMAND --help               all options of a command\n";

constexpr const char* RunExamples = "Examples:\n"
                                    "  tarvix run door.lin\n"
                                    "  tarvix run setup.lin door.lin --vcd door.vcd --timing\n"
                                    "  echo 'READ_FRAME ID (7D) LEN 2;' | tarvix run - --format json\n";

constexpr const char* WriteExamples = "Examples:\n"
                                      "  tarvix write 0x20 01 02\n"
                                      "  tarvix write 3C 02 09 02 FF FF FF FF FF --checksum classic -d ftdi:///1\n";

constexpr const char* ReadExamples = "Examples:\n"
                                     "  tarvix read 0x3D 2 --timing\n"
                                     "  tarvix read 11 1 --checksum classic --format candump\n";

constexpr const char* ScanExamples = "Examples:\n"
                                     "  tarvix scan\n"
                                     "  tarvix scan -d ftdi:///1 -b 9600 --timing\n";

constexpr const char* DevicesExamples = "Examples:\n"
                                        "  tarvix devices\n"
                                        "  tarvix read 3D 2 -d ftdi:///1       use the first of them\n";

constexpr const char* IDExamples = "Examples:\n"
                                   "  tarvix id 3D\n"
                                   "  tarvix id 00 01 3C 3D\n";

std::string VersionText()
{
    const Process Version;
    return std::string("tarvix ")
        .append(std::to_string(Version.Major()))
        .append(".")
        .append(std::to_string(Version.Minor()))
        .append(".")
        .append(std::to_string(Version.Revision()));
}

/// `Parse` with its refusals as CLI11 wants them.
template <typename Parser>
auto Parsed(const std::string& Name, Parser Parse, const std::string& Text)
{
    try {
        return Parse(Text);
    } catch (const ArgumentError& Refusal) {
        throw CLI::ValidationError(Name, Refusal.what());
    }
}

/// An option or argument whose text `Parse` turns into `Value`.
template <typename Target, typename Parser>
CLI::Option* AddValue(CLI::App& App, const std::string& Name, Target& Value, Parser Parse, const std::string& Help)
{
    const auto Store = [Name, &Value, Parse](const std::string& Text) { Value = Parsed(Name, Parse, Text); };
    return App.add_option_function<std::string>(Name, Store, Help)->type_name("");
}

/// An argument that may be repeated.
template <typename Element, typename Parser>
CLI::Option* AddValues(CLI::App& App, const std::string& Name, std::vector<Element>& Values, Parser Parse,
                       const std::string& Help)
{
    const auto Store = [Name, &Values, Parse](const std::vector<std::string>& Texts) {
        for (const std::string& Text : Texts) {
            Values.push_back(Parsed(Name, Parse, Text));
        }
    };
    return App.add_option_function<std::vector<std::string>>(Name, Store, Help)->type_name("");
}

/// Accepts the words of `Choices`.
template <typename Value, std::size_t Count>
auto OneOf(const std::array<std::pair<const char*, Value>, Count>& Choices)
{
    return [Choices](const std::string& Text) {
        std::string Words;
        for (const auto& [Word, Meaning] : Choices) {
            if (Text == Word) {
                return Meaning;
            }
            Words.append(Words.empty() ? "" : ", ").append(Word);
        }
        throw ArgumentError(std::string("\"").append(Text).append("\" is none of ").append(Words).append("."));
    };
}

constexpr std::array<std::string_view, 3> PrintOnly = {"-h", "--help", "--version"};

constexpr std::array Formats = {std::pair{"table", OutputFormat::Table}, std::pair{"json", OutputFormat::JSON},
                                std::pair{"candump", OutputFormat::Candump}};
constexpr std::array ChecksumModels = {std::pair{"classic", elcLIN13}, std::pair{"enhanced", elcLIN20}};

void AddFile(CLI::App& App, const char* Name, std::string& File, const char* Help)
{
    const auto IsNamed = [](const std::string& Path) { return Path.empty() ? "The file's name is empty." : ""; };
    App.add_option(Name, File, Help)->type_name("FILE")->check(CLI::Validator(IsNamed, ""));
}

void AddBusOptions(CLI::App& App, BusOptions& Bus)
{
    App.add_option("-d,--device", Bus.Device, "Device to use: sim:, sim:FILE.toml, ftdi:///1 or another chip's URL")
        ->type_name("URL")
        ->capture_default_str();
    AddValue(App, "-b,--baud", Bus.BitRate, ParseBitRate, "Bit rate in bits per second")
        ->type_name("RATE")
        ->default_str("19200");
    AddValue(App, "--break-width", Bus.BreakWidth, ParseBreakWidth, "Width of the break in bit times")
        ->type_name("BITS")
        ->default_str("13");
    AddValue(App, "--checksum", Bus.ChecksumModel, OneOf(ChecksumModels), "Checksum model: classic or enhanced")
        ->type_name("MODEL")
        ->default_str("enhanced");
    AddFile(App, "--vcd", Bus.VCDFile, "Write the waveform as a VCD file, and a GTKWave save file beside it");
    AddFile(App, "--svg", Bus.SVGFile, "Write a picture of the frames");
    AddFile(App, "--record", Bus.RecordFile, "Write the operation log, a script that can be run again");
    AddValue(App, "--format", Bus.Format, OneOf(Formats), "Output: table, json or candump")
        ->type_name("FORMAT")
        ->default_str("table");
    App.add_flag("--timing", Bus.Timing, "Add response space, longest gap, clock deviation and sampling margin");
    App.add_flag("-q,--quiet", Bus.Quiet, "No notices and no progress bar; errors are still told");
}

template <typename Arguments>
concept UsesBus = requires(const Arguments& Each)
{
    Each.Bus;
};

template <typename Arguments>
std::optional<FileClash> ClashIn(const Arguments& /*Each*/)
{
    return std::nullopt;
}

template <UsesBus Arguments>
std::optional<FileClash> ClashIn(const Arguments& Each)
{
    return FindFileClash(Each.Bus);
}

std::optional<FileClash> ClashIn(const RunArguments& Run)
{
    return FindFileClash(Run.Bus, Run.Scripts);
}

/// No file may be overwritten by another's output.
void RefuseFileClashes(const Command& Chosen)
{
    if (const auto Clash = std::visit([](const auto& Each) { return ClashIn(Each); }, Chosen)) {
        throw CLI::ValidationError(Clash->Option, Clash->Problem);
    }
}

/// Every command with the record that it fills.
class CommandParser {
public:
    CommandParser() : App_("Commander of a LIN bus over the MPSSE engine of a USB chip", "tarvix")
    {
        App_.require_subcommand(0, 1); // none: told by `Parse`, after what else is wrong
        App_.set_version_flag("--version", VersionText, "Print the version and exit");
        App_.footer(MainExamples);
        AddRun();
        AddWrite();
        AddRead();
        AddScan();
        Add("devices", "List the chips found on USB, as URLs", DevicesExamples, DevicesArguments{});
        AddID();
    }

    Command Parse(std::vector<std::string> Arguments)
    {
        if (!Arguments.empty() && std::ranges::find(PrintOnly, Arguments.front()) != PrintOnly.end()) {
            Arguments.resize(1); // a command behind it need not be complete
        }
        try {
            std::reverse(Arguments.begin(), Arguments.end()); // as CLI11 wants them
            App_.parse(std::move(Arguments));
            if (!Chosen_) {
                throw CLI::RequiredError("A command");
            }
            RefuseFileClashes(*Chosen_);
            return *Chosen_;
        } catch (const CLI::ParseError& End) {
            return Explain(End);
        }
    }

private:
    /// A command without options yet; `Record` is what `Parse` returns when it is chosen.
    template <typename Record>
    std::pair<CLI::App&, Record&> Add(const char* Name, const char* Help, const char* Examples, Record Initial)
    {
        CLI::App& App = *App_.add_subcommand(Name, Help);
        App.set_version_flag("--version", VersionText, "Print the version and exit");
        App.footer(Examples);
        const auto Held = std::make_shared<Command>(std::move(Initial));
        App.final_callback([this, Held] { Chosen_ = Held; });
        return {App, std::get<Record>(*Held)};
    }

    /// As above, for a command that uses the bus.
    template <typename Record>
    std::pair<CLI::App&, Record&> AddBusCommand(const char* Name, const char* Help, const char* Examples)
    {
        const auto [App, Arguments] = Add(Name, Help, Examples, Record{});
        AddBusOptions(App, Arguments.Bus);
        return {App, Arguments};
    }

    void AddRun()
    {
        const auto [App, Run] = AddBusCommand<RunArguments>("run", "Execute scripts, one after the other", RunExamples);
        App.add_option("SCRIPT", Run.Scripts, "Script file in UTF-8 or UTF-16; - is the standard input")
            ->required()
            ->type_name("");
    }

    void AddWrite()
    {
        const auto [App, Write] = AddBusCommand<WriteArguments>("write", "Send one frame", WriteExamples);
        AddValue(App, "ID", Write.Identifier, ParseIdentifier, "Frame identifier 00..3F, hexadecimal")->required();
        AddValues(App, "BYTE", Write.Data, ParseByte, "Data bytes, hexadecimal, 1 to 8 of them")->required();
        App.parse_complete_callback([&Write = Write] {
            if (Write.Data.size() > 8) {
                throw CLI::ValidationError(
                    "BYTE", std::to_string(Write.Data.size()).append(" data bytes are given; a frame carries 1 to 8."));
            }
        });
    }

    void AddRead()
    {
        const auto [App, Read] = AddBusCommand<ReadArguments>("read", "Read one frame", ReadExamples);
        AddValue(App, "ID", Read.Identifier, ParseIdentifier, "Frame identifier 00..3F, hexadecimal")->required();
        AddValue(App, "LENGTH", Read.Length, ParseDataLength, "Data bytes expected, 1 to 8")->required();
    }

    void AddScan() { AddBusCommand<ScanArguments>("scan", "Ask every identifier and list who answers", ScanExamples); }

    void AddID()
    {
        const auto [App, ID] = Add("id", "Print protected identifiers", IDExamples, IDArguments{});
        AddValues(App, "ID", ID.Identifiers, ParseIdentifier, "Frame identifiers 00..3F, hexadecimal")->required();
    }

    PrintAndExit Explain(const CLI::ParseError& End) const
    {
        std::ostringstream Out;
        std::ostringstream Diagnostics;
        if (App_.exit(End, Out, Diagnostics) == 0) {
            return {AllWell, Out.str()};
        }
        const auto Chosen = App_.get_subcommands();
        std::string Text = std::string("tarvix: ").append(End.what());
        Text.append(Text.ends_with('.') ? "\n" : ".\n").append("Run \"tarvix ");
        Text.append(Chosen.empty() ? "" : Chosen.front()->get_name() + " ")
            .append("--help\" to see what is possible.\n");
        return {WrongUsage, std::move(Text)};
    }

    CLI::App App_;
    std::shared_ptr<Command> Chosen_;
};

} // namespace

Command ParseCommandLine(std::vector<std::string> Arguments)
{
    return CommandParser().Parse(std::move(Arguments));
}

} // namespace Tarvix::Tool
