/// @file
/// A log object that keeps the lines.
#pragma once

#include "tarvix/script/icLog.h"

#include <string>
#include <vector>

namespace Tarvix::Testing {

/// Keeps every line; throws `Failure` instead when it is set.
class CollectingLog : public icLog {
public:
    std::vector<std::string> Lines;
    bool Fails = false;

    void LogEntry(std::string_view LINScript) override
    {
        if (Fails) {
            throw 42; // any type must arrive as it was thrown
        }
        Lines.emplace_back(LINScript);
    }
};

} // namespace Tarvix::Testing
