/// @file
/// Tests of raised errors.
#pragma once

#include "tarvix/common/Error.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace Tarvix::Testing {

/// The error that `Operation` raises, or nothing.
template <typename Function>
std::optional<Error> ErrorOf(Function Operation)
{
    try {
        Operation();
    } catch (const Error& Raised) {
        return Raised;
    }
    return std::nullopt;
}

/// Expects that `Operation` raises `Number` in the name of `Source`; of the description only what is given is compared.
template <typename Enum, typename Function>
void ExpectError(Enum Number, Function Operation, const std::string& Source = "Tarvix",
                 const std::optional<std::string>& Description = std::nullopt)
{
    const std::optional<Error> Raised = ErrorOf(Operation);
    ASSERT_TRUE(Raised.has_value()) << "raised nothing";
    EXPECT_EQ(Raised->Number(), static_cast<std::int32_t>(Number));
    EXPECT_EQ(Raised->Source(), Source);
    EXPECT_EQ(Raised->Description(), Description.value_or(Raised->Description()));
}

} // namespace Tarvix::Testing
