#pragma once

#include "prepare/vertexrow.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace prep {

enum class MifKind {
    None,
    Point,
    Line,
    Pline,
    Region,
    Arc,
    Text,
    Rect,
    RoundRect,
    Ellipse,
    MultiPoint,
    Collection,
};

/// An object of a MIF file.
struct MifObject {
    MifKind kind = MifKind::None;
    std::string_view name; ///< as the file writes it
    bool complete = true; ///< all that belongs to it was there and good
    VertexRow vertices; ///< of all parts
    /// How many of them the sections of a PLINE have, the rings of a REGION, the points of a
    /// MULTIPOINT; two are the corners of what stands in a rectangle.
    std::vector<uint32_t> parts;
    double start = 0; ///< angles of an ARC in degrees
    double end = 0;
    double rounding = 0; ///< of the corners of a ROUNDRECT: the diameter
    int collected = 0; ///< how many objects a COLLECTION holds
    std::string_view text; ///< a TEXT as it stands, from its keyword to its last quote
    std::string_view clauses; ///< the lines behind it: PEN, BRUSH and the like
};

/// Takes the next line with a PEN, a BRUSH or the like from `clauses`, trimmed; empty at the end.
std::string_view takeClause(std::string_view& clauses);

/// Reads MIF files by their words: a count or a vertex may stand on another line than the readers
/// look for it, with blank lines between.
class MifReader {
public:
    /// `bytes` must outlive the reader and what it gives.
    explicit MifReader(std::string_view bytes)
        : m_bytes(bytes)
    {
    }

    /// Reads the lines before the data, trimmed; false when there is no line "Data" behind as many
    /// as a header may have.
    bool readHeader(std::vector<std::string_view>& lines);
    /// Reads the next object. False at the end.
    bool next(MifObject& object);
    /// Blank lines within objects, and counts and vertices that stood on other lines than usual.
    qint64 mendedLines() const { return m_mendedLines; }

private:
    std::string_view line();
    std::string_view word();
    std::optional<double> number(std::string_view* digits = nullptr);
    int count();
    bool readPart(int count, MifObject& object);
    bool readObject(MifObject& object);
    bool readPline(MifObject& object);
    bool readRegion(MifObject& object);
    bool readText(MifObject& object, size_t start);
    void readClauses(MifObject& object);
    void noteOddPlace(bool startsLine);

    std::string_view m_bytes;
    size_t m_position = 0;
    bool m_wordStartsLine = false; ///< the last word is the first one of its line
    bool m_blankBeforeWord = false; ///< a blank line stood before the last word
    qint64 m_mendedLines = 0;
};

/// What the first word of a line is the name of; none where it is no object's.
std::optional<MifKind> mifKindOf(std::string_view word);

} // namespace prep
