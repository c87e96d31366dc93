#include "prepare/midrows.h"

#include "prepare/plainnumber.h"

#include <algorithm>

namespace prep {

namespace {

std::string_view withoutReturn(std::string_view line)
{
    return !line.empty() && line.back() == '\r' ? line.substr(0, line.size() - 1) : line;
}

/// Where the value that begins at `start` ends: at a delimiter, a line end, or the end.
size_t fieldEnd(std::string_view bytes, size_t start, char delimiter)
{
    size_t i = start;
    while (i < bytes.size() && bytes[i] == ' ')
        ++i;
    if (i < bytes.size() && bytes[i] == '"') {
        // Quotes within quotes are doubled.
        for (++i; i < bytes.size(); ++i) {
            if (bytes[i] != '"')
                continue;
            if (i + 1 < bytes.size() && bytes[i + 1] == '"')
                ++i;
            else
                break;
        }
    }
    while (i < bytes.size() && bytes[i] != delimiter && bytes[i] != '\n')
        ++i;
    return i;
}

} // namespace

MidRows::MidRows(std::string_view bytes, char delimiter, size_t columns, size_t objects)
    : m_bytes(bytes)
    , m_delimiter(delimiter)
    , m_columns(columns)
{
    const size_t lines = count();
    if (lines == objects)
        return;
    m_isByLines = false;
    // A quote that nothing closes takes the rest of the file into one row.
    m_isByLines = count() < objects && lines > objects;
}

size_t MidRows::count() const
{
    size_t count = 0;
    for (size_t start = 0; start < m_bytes.size(); start = rowEnd(start) + 1)
        ++count;
    return count;
}

bool MidRows::next(std::string_view& row)
{
    if (m_position >= m_bytes.size())
        return false;
    const size_t end = rowEnd(m_position);
    row = withoutReturn(m_bytes.substr(m_position, end - m_position));
    m_position = end + 1;
    return true;
}

/// Where the row that begins at `start` ends.
size_t MidRows::rowEnd(size_t start) const
{
    const size_t lineEnd = std::min(m_bytes.find('\n', start), m_bytes.size());
    if (m_isByLines)
        return lineEnd;
    size_t fields = 0;
    const size_t end = recordEnd(start, &fields);
    // A line that has all columns ends its row, whatever its quotes say.
    return fields > m_columns ? std::min(end, lineEnd) : end;
}

size_t MidRows::recordEnd(size_t start, size_t* fields) const
{
    size_t end = start;
    for (*fields = 1;; ++*fields) {
        end = fieldEnd(m_bytes, end, m_delimiter);
        if (end >= m_bytes.size() || m_bytes[end] == '\n')
            return end;
        ++end;
    }
}

bool MidFields::next(std::string_view& field)
{
    if (m_atEnd)
        return false;
    size_t end = fieldEnd(m_row, m_position, m_delimiter);
    // Line ends are within the value here.
    while (end < m_row.size() && m_row[end] == '\n')
        end = fieldEnd(m_row, end + 1, m_delimiter);
    field = m_row.substr(m_position, end - m_position);
    m_atEnd = end >= m_row.size();
    m_position = end + 1;
    return true;
}

std::string midField(std::string_view field)
{
    const std::string_view value = trimmed(field);
    std::string line;
    line.reserve(value.size() + 2);
    for (const char c : value) {
        const bool isLineEnd = c == '\n' || c == '\r';
        if (!isLineEnd)
            line += c;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    const bool isQuoted = !line.empty() && line.front() == '"';
    if (!isQuoted && line.find(',') != std::string::npos)
        line.insert(0, 1, '"').append(1, '"');
    return line;
}

} // namespace prep
