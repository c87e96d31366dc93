#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace prep {

/// A vertex of the result. Digits that are not empty are those of the source and are written as
/// they are; else the values are.
struct FlatVertex {
    double x = 0;
    double y = 0;
    std::string_view xDigits;
    std::string_view yDigits;
};

/// Walks the vertices of a row by its text.
class VertexCursor {
public:
    explicit VertexCursor(std::string_view text)
        : m_rest(text)
    {
    }

    /// Reads the digits of the next vertex. False at the end.
    bool next(std::string_view& x, std::string_view& y);

private:
    std::string_view line();

    std::string_view m_rest;
};

/// The vertices of a contour as they will be written: the text of each coordinate on a line of its
/// own. So the longest contour takes no more memory than its digits do.
class VertexRow {
public:
    void clear();
    void append(const FlatVertex& vertex);

    size_t size() const { return m_size; }
    /// Whether all coordinates are numbers.
    bool isFinite() const { return m_finite; }
    double leastX() const { return m_leastX; }
    std::string_view text() const { return m_text; }
    VertexCursor cursor() const { return VertexCursor(m_text); }

private:
    std::string m_text;
    size_t m_size = 0;
    double m_leastX = 0;
    bool m_finite = true;
};

} // namespace prep
