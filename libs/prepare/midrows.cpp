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
    splitLines();
    if (m_rows.size() == objects)
        return;
    const std::vector<std::string_view> lines = m_rows;
    splitRecords();
    // A quote that nothing closes takes the rest of the file into one row.
    if (m_rows.size() < objects && lines.size() > objects)
        m_rows = lines;
}

void MidRows::splitLines()
{
    for (size_t start = 0; start < m_bytes.size();) {
        const size_t end = std::min(m_bytes.find('\n', start), m_bytes.size());
        m_rows.push_back(withoutReturn(m_bytes.substr(start, end - start)));
        start = end + 1;
    }
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

void MidRows::splitRecords()
{
    m_rows.clear();
    for (size_t start = 0; start < m_bytes.size();) {
        size_t fields = 0;
        size_t end = recordEnd(start, &fields);
        // A line that has all columns ends its row, whatever its quotes say.
        const size_t lineEnd = std::min(m_bytes.find('\n', start), m_bytes.size());
        if (fields > m_columns && end > lineEnd)
            end = lineEnd;
        m_rows.push_back(withoutReturn(m_bytes.substr(start, end - start)));
        start = end + 1;
    }
}

std::vector<std::string_view> midFields(std::string_view row, char delimiter)
{
    std::vector<std::string_view> fields;
    for (size_t start = 0;;) {
        size_t end = fieldEnd(row, start, delimiter);
        // Line ends are within the value here.
        while (end < row.size() && row[end] == '\n')
            end = fieldEnd(row, end + 1, delimiter);
        fields.push_back(row.substr(start, end - start));
        if (end >= row.size())
            return fields;
        start = end + 1;
    }
}

std::string midField(std::string_view field)
{
    std::string value(trimmed(field));
    std::string line;
    for (const char c : value) {
        const bool isLineEnd = c == '\n' || c == '\r';
        if (!isLineEnd)
            line += c;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    const bool isQuoted = !line.empty() && line.front() == '"';
    return !isQuoted && line.find(',') != std::string::npos ? '"' + line + '"' : line;
}

} // namespace prep
