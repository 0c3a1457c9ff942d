/// @file
/// A locale that writes 13,5: what the host's locale must not change is tested under it.
#pragma once

#include <clocale>
#include <locale>
#include <stdexcept>
#include <string>

namespace Tarvix::Testing {

/// While it lives, the program runs under a German locale, in C and in C++. Without that locale on the machine the test
/// fails.
class DecimalCommaLocale {
public:
    DecimalCommaLocale() : Before_(std::setlocale(LC_ALL, nullptr)) // NOLINT(concurrency-mt-unsafe)
    {
        if (std::setlocale(LC_ALL, Name) == nullptr) { // NOLINT(concurrency-mt-unsafe)
            throw std::runtime_error("the locale de_DE.UTF-8 is missing; scripts/setup generates it");
        }
        std::locale::global(std::locale(Name));
    }
    ~DecimalCommaLocale()
    {
        std::locale::global(BeforeInStreams_);
        static_cast<void>(std::setlocale(LC_ALL, Before_.c_str())); // NOLINT(concurrency-mt-unsafe)
    }
    DecimalCommaLocale(const DecimalCommaLocale&) = delete;
    DecimalCommaLocale& operator=(const DecimalCommaLocale&) = delete;

private:
    static constexpr const char* Name = "de_DE.UTF-8";

    std::string Before_;
    std::locale BeforeInStreams_;
};

} // namespace Tarvix::Testing
