/// @file
/// A locale that writes 13,5: what the host's locale must not change is tested under it.
#pragma once

#include <clocale>
#include <locale>
#include <stdexcept>
#include <string>

namespace Tarvix::Testing {

/// While it lives, the program writes numbers as Germans do: in C by a locale of the machine, without which the test
/// fails, and in C++ by punctuation of its own, because not every C++ library knows the machine's locales.
class DecimalCommaLocale {
public:
    DecimalCommaLocale() : Before_(std::setlocale(LC_ALL, nullptr)) // NOLINT(concurrency-mt-unsafe)
    {
        if (std::setlocale(LC_ALL, Name) == nullptr) { // NOLINT(concurrency-mt-unsafe)
            throw std::runtime_error("the German locale is missing; scripts/setup generates it");
        }
        BeforeInStreams_ = std::locale::global(std::locale(std::locale::classic(), new Comma));
    }
    ~DecimalCommaLocale()
    {
        std::locale::global(BeforeInStreams_);
        static_cast<void>(std::setlocale(LC_ALL, Before_.c_str())); // NOLINT(concurrency-mt-unsafe)
    }
    DecimalCommaLocale(const DecimalCommaLocale&) = delete;
    DecimalCommaLocale& operator=(const DecimalCommaLocale&) = delete;

private:
#if defined(_WIN32)
    static constexpr const char* Name = "German";
#else
    static constexpr const char* Name = "de_DE.UTF-8";
#endif

    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };

    std::string Before_;
    std::locale BeforeInStreams_;
};

} // namespace Tarvix::Testing
