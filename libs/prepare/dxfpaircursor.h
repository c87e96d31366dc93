#pragma once

#include "prepare/plainnumber.h"

#include <QtGlobal>

#include <cstring>
#include <string_view>

namespace prep {

/// A group code and its value. The value is what stands in the file, without its line end.
struct DxfPair {
    int code = 0;
    std::string_view value;

    /// The value as the readers compare it.
    std::string_view text() const { return trimmed(value); }
};

/// A line without its carriage returns, of which a file that went through many hands has several.
inline std::string_view withoutReturns(std::string_view line)
{
    while (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    return line;
}

/// Walks the pairs of an ASCII drawing, and passes over what is no pair: comments (code 999), blank
/// lines where a code should stand, lines that are no code. The import's own cursor stops there,
/// as it must; this one is for drawings that need mending.
class DxfPairCursor {
public:
    /// `bytes` must outlive the cursor and the values of its pairs.
    explicit DxfPairCursor(std::string_view bytes)
        : m_bytes(bytes)
    {
    }

    /// Reads the next pair. False at the end; an unfinished last pair does not count as one.
    bool next(DxfPair& pair) { return takePlain(pair) || takeAny(pair); }

    /// Where the pair begins that next() would read, for another cursor over the same bytes.
    size_t position() const { return m_position; }
    void moveTo(size_t position) { m_position = position; }

    // What was passed over.
    qint64 comments() const { return m_comments; }
    qint64 blankLines() const { return m_blankLines; }
    qint64 strayLines() const { return m_strayLines; }

private:
    static constexpr int commentCode = 999;

    bool takePlain(DxfPair& pair);
    bool takeAny(DxfPair& pair);
    std::string_view line();

    std::string_view m_bytes;
    size_t m_position = 0;
    qint64 m_comments = 0;
    qint64 m_blankLines = 0;
    qint64 m_strayLines = 0;
};

/// Nearly all pairs are a code of one to four digits, with nothing but spaces before it, and a
/// line. Takes one of these; false for anything else, which takeAny() then takes.
inline bool DxfPairCursor::takePlain(DxfPair& pair)
{
    constexpr int mostDigits = 4;
    const char* const end = m_bytes.data() + m_bytes.size();
    const char* at = m_bytes.data() + m_position;
    while (at != end && *at == ' ')
        ++at;
    const char* const digits = at;
    int code = 0;
    for (; at != end && *at >= '0' && *at <= '9' && at - digits < mostDigits; ++at)
        code = code * 10 + (*at - '0');
    if (at == digits || code == commentCode)
        return false;
    if (at != end && *at == '\r')
        ++at;
    if (at == end || *at != '\n' || ++at == end)
        return false;
    const auto left = static_cast<size_t>(end - at);
    const auto* const lineEnd = static_cast<const char*>(std::memchr(at, '\n', left));
    const size_t length = lineEnd ? static_cast<size_t>(lineEnd - at) : left;
    pair.code = code;
    pair.value = withoutReturns({ at, length });
    m_position = static_cast<size_t>(at - m_bytes.data()) + length + (lineEnd ? 1 : 0);
    return true;
}

} // namespace prep
