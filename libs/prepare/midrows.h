#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace prep {

/// The rows of a MID file, one for each object.
class MidRows {
public:
    /// `bytes` must outlive the rows. Where the file has as many lines as there are objects, a row
    /// is a line; else a value in quotes may run over lines.
    MidRows(std::string_view bytes, char delimiter, size_t columns, size_t objects);

    size_t size() const { return m_rows.size(); }
    /// A row, which may be blank.
    std::string_view row(size_t index) const { return m_rows[index]; }

private:
    void splitLines();
    void splitRecords();
    size_t recordEnd(size_t start, size_t* fields) const;

    std::string_view m_bytes;
    char m_delimiter;
    size_t m_columns;
    std::vector<std::string_view> m_rows;
};

/// The values of a row, as they stand: quotes included.
std::vector<std::string_view> midFields(std::string_view row, char delimiter);

/// A value as it can stand between commas: line ends as blanks, in quotes where it needs them.
std::string midField(std::string_view field);

} // namespace prep
