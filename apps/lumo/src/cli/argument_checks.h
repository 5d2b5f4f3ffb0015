// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/CLI.hpp>

#include <charconv>
#include <limits>
#include <sstream>
#include <string>
#include <system_error>
#include <type_traits>

namespace lumo::program {

/// Accepts a decimal number from `lowest` to `highest`, both included. Replaces the text
/// of a whole number by its normal form, because CLI11 itself reads 010 as octal.
template <typename Number>
CLI::Validator between(Number lowest, Number highest, const std::string& description)
{
    const auto check = [=](std::string& text) -> std::string {
        Number number{};
        const char* const end = text.data() + text.size();
        const auto [rest, fault] = std::from_chars(text.data(), end, number);
        // Written so that what is not a number (nan) is not within.
        if (fault != std::errc() || rest != end || !(number >= lowest && number <= highest)) {
            return "'" + text + "' is not a number, " + description;
        }
        if constexpr (std::is_integral_v<Number>) {
            text = std::to_string(number);
        }
        return {};
    };
    return {check, description};
}

template <typename Number>
CLI::Validator between(Number lowest, Number highest)
{
    std::ostringstream text;
    text << lowest << " to " << highest;
    return between(lowest, highest, text.str());
}

inline CLI::Validator atLeast(int lowest)
{
    return between(lowest, std::numeric_limits<int>::max(), "at least " + std::to_string(lowest));
}

/// Refuses an empty text. It usually comes from a shell variable that was not set, and
/// must not count as an option that was not given.
inline CLI::Validator notEmpty()
{
    return {
        [](const std::string& text) { return std::string(text.empty() ? "is empty" : ""); }, ""};
}

} // namespace lumo::program
