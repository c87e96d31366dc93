#include "prepare/plainnumber.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace prep {

template <typename Number>
static std::optional<Number> converted(std::string_view text)
{
    // from_chars knows no plus sign; a sign behind it is none of its business either.
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    Number number{};
    const char* const end = text.data() + text.size();
    const auto [next, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || next != end)
        return {};
    return number;
}

std::optional<double> toNumber(std::string_view text)
{
    const std::optional<double> number = converted<double>(text);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<int> toWhole(std::string_view text)
{
    return converted<int>(text);
}

std::string plainText(double number)
{
    constexpr int significant = 15;
    constexpr int mostDecimals = 10;
    // The longest finite double has 309 digits before the point.
    char buffer[352];
    const double magnitude = std::abs(number);
    const int wholes = magnitude < 1 ? 0 : static_cast<int>(std::floor(std::log10(magnitude))) + 1;
    const int decimals = std::clamp(significant - wholes, 0, mostDecimals);
    const auto result =
        std::to_chars(buffer, buffer + sizeof(buffer), number, std::chars_format::fixed, decimals);
    std::string text(buffer, result.ptr);
    if (text.find('.') != std::string::npos) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.')
            text.pop_back();
    }
    return text == "-0" ? "0" : text;
}

} // namespace prep
