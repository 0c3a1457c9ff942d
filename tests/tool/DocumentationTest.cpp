// Help, man page and completions tell the same options.

#include "tests/tool/Program.h"

#include <gtest/gtest.h>

#include <array>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace Tarvix::Testing {

namespace {

using Words = std::set<std::string>;

constexpr std::array Commands = {"run", "write", "read", "scan", "devices", "id"};

/// Every match's first group.
Words Matches(const std::string& Text, const char* Pattern)
{
    const std::regex Expression(Pattern);
    Words Found;
    for (std::sregex_iterator Next(Text.begin(), Text.end(), Expression), End; Next != End; ++Next) {
        Found.insert((*Next)[1]);
    }
    return Found;
}

/// The options that a help text lists, short and long.
Words OptionsOfHelp(const std::vector<std::string>& Arguments)
{
    const std::string Help = RunProgram(Arguments).Out;
    Words Options = Matches(Help, "\n  (?:-[a-z],)?(--[a-z-]+)");
    Options.merge(Matches(Help, "\n  (-[a-z]),--"));
    return Options;
}

Words OptionsOfCommand(const std::string& Command)
{
    return OptionsOfHelp({Command, "--help"});
}

Words AllOptions()
{
    Words All = OptionsOfHelp({"--help"});
    for (const char* const Command : Commands) {
        All.merge(OptionsOfCommand(Command));
    }
    return All;
}

/// What the bash completion offers for the last word of a command line.
Words BashOffers(const std::vector<std::string>& Line)
{
    std::string Script = "source '" + SourceFile("tools/tarvix/completions/tarvix.bash") + "'; compopt() { :; }; ";
    Script += "COMP_WORDS=(tarvix";
    for (const std::string& Word : Line) {
        Script += " '" + Word + "'";
    }
    Script += "); COMP_CWORD=" + std::to_string(Line.size()) + "; _tarvix; printf '%s\\n' \"${COMPREPLY[@]}\"";
    std::istringstream Output(RunProgram({}, {.Input = Script, .Executable = "/bin/bash"}).Out);
    Words Offers;
    for (std::string Word; std::getline(Output, Word);) {
        if (!Word.empty()) {
            Offers.insert(Word);
        }
    }
    return Offers;
}

TEST(Help, IsEverywhereAndShowsExamples)
{
    for (const auto& Arguments : std::vector<std::vector<std::string>>{{"--help"},
                                                                       {"-h"},
                                                                       {"run", "--help"},
                                                                       {"write", "-h"},
                                                                       {"read", "--help"},
                                                                       {"scan", "--help"},
                                                                       {"devices", "--help"},
                                                                       {"id", "--help"}}) {
        const Outcome Result = RunProgram(Arguments);
        EXPECT_EQ(Result.Status, 0);
        EXPECT_EQ(Result.Error, "");
        EXPECT_NE(Result.Out.find("Examples:\n  "), std::string::npos) << Arguments[0];
    }
}

TEST(Help, IsGivenEvenWhereArgumentsAreMissing)
{
    EXPECT_EQ(RunProgram({"--help", "read"}).Out, RunProgram({"--help"}).Out);
    EXPECT_EQ(RunProgram({"--version", "read"}).Out, "tarvix 1.1.0\n");
    EXPECT_NE(RunProgram({"read", "3D", "--help"}).Out.find("Usage: tarvix read"), std::string::npos);
}

TEST(Version, IsEverywhere)
{
    EXPECT_EQ(RunProgram({"--version"}).Out, "tarvix 1.1.0\n");
    for (const char* const Command : Commands) {
        const Outcome Result = RunProgram({Command, "--version"});
        EXPECT_EQ(Result.Out, "tarvix 1.1.0\n") << Command;
        EXPECT_EQ(Result.Status, 0);
    }
}

TEST(Documentation, CommandsAreThoseOfTheHelp)
{
    const std::string Help = RunProgram({"--help"}).Out;
    const std::size_t Begin = Help.find("Subcommands:");
    EXPECT_EQ(Matches(Help.substr(Begin, Help.find("Examples:") - Begin), "\n  ([a-z]+) "),
              Words(Commands.begin(), Commands.end()));
}

TEST(Documentation, CommandsHaveTheOptionsThatTheyShould)
{
    const Words Plain = {"-h", "--help", "--version"};
    Words Bus = Plain;
    Bus.insert({"-d", "--device", "-b", "--baud", "--break-width", "--checksum", "--vcd", "--svg", "--record",
                "--format", "--timing", "-q", "--quiet"});
    for (const char* const Command : {"run", "write", "read", "scan"}) {
        EXPECT_EQ(OptionsOfCommand(Command), Bus) << Command;
    }
    EXPECT_EQ(OptionsOfCommand("devices"), Plain);
    EXPECT_EQ(OptionsOfCommand("id"), Plain);
}

TEST(Documentation, TheManPageTellsEveryOptionAndCommand)
{
    const std::string Source = Contents(SourceFile("docs/man/tarvix.1"));
    const std::size_t Begin = Source.find(".SH OPTIONS");
    const std::string Options =
        std::regex_replace(Source.substr(Begin, Source.find(".SH OUTPUT") - Begin), std::regex(R"(\\-)"), "-");
    Words Found = Matches(Options, R"(\n\.(?:B|BI|BR) (?:-[a-z] ", " )?(--[a-z-]+))");
    Found.merge(Matches(Options, R"(\n\.BR (-[a-z]) ", ")"));
    EXPECT_EQ(Found, AllOptions());
    EXPECT_EQ(Matches(Source, R"(\\fBtarvix ([a-z]+)\\fR)"), Words(Commands.begin(), Commands.end()));
}

TEST(Documentation, BashOffersWhatEachCommandTakes)
{
    Words Beginnings(Commands.begin(), Commands.end());
    Beginnings.merge(OptionsOfHelp({"--help"}));
    EXPECT_EQ(BashOffers({""}), Beginnings);
    for (const char* const Command : Commands) {
        EXPECT_EQ(BashOffers({Command, "-"}), OptionsOfCommand(Command)) << Command;
    }
    EXPECT_EQ(BashOffers({"scan", "--ch"}), Words{"--checksum"});
}

TEST(Documentation, WhatBashOffersAsValuesIsAccepted)
{
    for (const char* const Option : {"--format", "--checksum", "-b", "--baud", "--device", "-d"}) {
        const Words Values = BashOffers({"read", Option, ""});
        EXPECT_FALSE(Values.empty()) << Option;
        for (const std::string& Value : Values) {
            EXPECT_NE(RunProgram({"read", "3D", "2", Option, Value}).Status, 2) << Option << ' ' << Value;
        }
    }
    EXPECT_EQ(BashOffers({"read", "--format", ""}), (Words{"table", "json", "candump"}));
}

TEST(Documentation, BashFindsScriptsAndBusFiles)
{
    const TemporaryDirectory Directory;
    const std::string Script = Directory.Write("a script.lin", "");
    const std::string Bus = Directory.Write("bus.toml", "");
    EXPECT_EQ(BashOffers({"run", Directory.Path("")}), Words{Script});
    EXPECT_EQ(BashOffers({"run", "--device", "sim", ":", Directory.Path("")}), Words{Bus});
}

TEST(Documentation, ZshAndFishKnowEveryOption)
{
    const std::string Zsh = Contents(SourceFile("tools/tarvix/completions/_tarvix"));
    Words ZshOptions = Matches(Zsh, R"((?:'|,)(--[a-z-]+)(?:\[|\}))");
    ZshOptions.merge(Matches(Zsh, R"(\{(-[a-z]),)"));
    EXPECT_EQ(ZshOptions, AllOptions());
    EXPECT_EQ(Matches(Zsh, R"(\n    ([a-z]+)\) _arguments)"), Words(Commands.begin(), Commands.end()));

    const std::string Fish = Contents(SourceFile("tools/tarvix/completions/tarvix.fish"));
    Words FishOptions;
    for (const std::string& Name : Matches(Fish, R"(complete -c[^\n]* -l ([a-z-]+) )")) {
        FishOptions.insert("--" + Name);
    }
    for (const std::string& Letter : Matches(Fish, R"(complete -c[^\n]* -s ([a-z]) )")) {
        FishOptions.insert("-" + Letter);
    }
    EXPECT_EQ(FishOptions, AllOptions());
    EXPECT_EQ(Matches(Fish, R"(\$none" -a ([a-z]+) )"), Words(Commands.begin(), Commands.end()));
}

} // namespace

} // namespace Tarvix::Testing
