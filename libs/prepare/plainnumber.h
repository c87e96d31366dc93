#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace prep {

/// `text` without white space around it.
inline std::string_view trimmed(std::string_view text)
{
    constexpr auto isSpace = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

/// The finite number that a trimmed text holds, in a form that the readers take. None for anything
/// else: a decimal comma, "inf", a number with something behind it.
std::optional<double> toNumber(std::string_view text);

/// The whole number that a trimmed text holds; none for anything else.
std::optional<int> toWhole(std::string_view text);

/// A finite number as plain decimal text without exponent: fifteen significant digits, as many as
/// any decimal number keeps on its way through a double, and ten decimals at the most.
std::string plainText(double number);

} // namespace prep
