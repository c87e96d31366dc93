#pragma once

#include <algorithm>
#include <string_view>

/// The bytes of a file without white space around them; a carriage return counts as such.
inline std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view space = " \t\r\n\v\f";
    const size_t first = text.find_first_not_of(space);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(space) - first + 1);
}

/// Walks the bytes of a file line by line and counts the lines.
class LineCursor {
public:
    explicit LineCursor(std::string_view bytes)
        : m_rest(bytes)
    {
    }

    bool atEnd() const { return m_rest.empty(); }
    /// The one-based number of the line last read.
    int lineNumber() const { return m_lineNumber; }

    /// The next line, trimmed; empty at the end.
    std::string_view next()
    {
        ++m_lineNumber;
        const size_t length = std::min(m_rest.find('\n'), m_rest.size());
        const std::string_view line = m_rest.substr(0, length);
        m_rest.remove_prefix(std::min(length + 1, m_rest.size()));
        return trimmed(line);
    }

private:
    std::string_view m_rest;
    int m_lineNumber = 0;
};
