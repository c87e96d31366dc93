#pragma once

#include <string>
#include <string_view>

namespace prep {

/// Reads the rows of a MID file, one for each object. There may be one for every byte, so they are
/// not kept.
class MidRows {
public:
    /// `bytes` must outlive the rows. Where the file has as many lines as there are objects, a row
    /// is a line; else a value in quotes may run over lines.
    MidRows(std::string_view bytes, char delimiter, size_t columns, size_t objects);

    bool isEmpty() const { return m_bytes.empty(); }
    /// Reads the next row, which may be blank. False at the end.
    bool next(std::string_view& row);

private:
    size_t count() const;
    size_t rowEnd(size_t start) const;
    size_t recordEnd(size_t start, size_t* fields) const;

    std::string_view m_bytes;
    char m_delimiter;
    size_t m_columns;
    bool m_isByLines = true;
    size_t m_position = 0;
};

/// Reads the values of a row, as they stand: quotes included.
class MidFields {
public:
    MidFields(std::string_view row, char delimiter)
        : m_row(row)
        , m_delimiter(delimiter)
    {
    }

    /// False behind the last one; a row has one at least.
    bool next(std::string_view& field);

private:
    std::string_view m_row;
    char m_delimiter;
    size_t m_position = 0;
    bool m_atEnd = false;
};

/// A value as it can stand between commas: line ends as blanks, in quotes where it needs them.
std::string midField(std::string_view field);

} // namespace prep
