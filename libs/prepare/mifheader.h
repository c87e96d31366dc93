#pragma once

#include <QByteArray>

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace prep {

/// The header of a MIF file.
class MifHeader {
public:
    /// From the lines before the data. They must outlive the header.
    explicit MifHeader(const std::vector<std::string_view>& lines);

    /// Between the columns of the MID file: a tab where the header does not say it.
    char delimiter() const { return m_delimiter; }
    size_t columnCount() const { return m_columns.size(); }
    /// The zero-based number of a column by its name, in upper or lower case; none for no column.
    std::optional<size_t> column(const QByteArray& name) const;
    /// Puts a column before all others.
    void putFirst(size_t column);
    /// Makes sure that there is a column.
    void addColumnIfNone();

    /// Multipliers of x and y, then what is added to them; none where nothing changes.
    std::optional<std::array<double, 4>> transform() const;
    std::string_view charset() const { return m_charset; }

    /// Whether the first three lines are those that the readers ask for.
    bool isReadable() const;
    /// The lines as the readers ask for them, with the given delimiter and charset (empty to keep
    /// it), with or without the line Transform, up to the line "Data".
    std::string text(char delimiter, const QByteArray& charset, bool withTransform) const;

private:
    void take(std::string_view line);

    std::string_view m_version = "300";
    std::string_view m_charset = "\"Neutral\"";
    std::string_view m_transform;
    std::vector<std::string_view> m_firstLines;
    std::vector<std::string_view> m_otherLines;
    std::vector<std::string> m_columns; ///< each as its line stands
    int m_columnsLeft = 0;
    char m_delimiter = '\t';
};

} // namespace prep
