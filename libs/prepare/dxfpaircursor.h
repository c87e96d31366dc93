#pragma once

#include <QtGlobal>

#include <string_view>

namespace prep {

/// A group code and its value. The value is what stands in the file, without its line end.
struct DxfPair {
    int code = 0;
    std::string_view value;

    /// The value as the readers compare it.
    std::string_view text() const;
};

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
    bool next(DxfPair& pair);

    /// Where the pair begins that next() would read, for another cursor over the same bytes.
    size_t position() const { return m_position; }
    void moveTo(size_t position) { m_position = position; }

    // What was passed over.
    qint64 comments() const { return m_comments; }
    qint64 blankLines() const { return m_blankLines; }
    qint64 strayLines() const { return m_strayLines; }

private:
    std::string_view line();

    std::string_view m_bytes;
    size_t m_position = 0;
    qint64 m_comments = 0;
    qint64 m_blankLines = 0;
    qint64 m_strayLines = 0;
};

} // namespace prep
