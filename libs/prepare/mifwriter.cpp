#include "prepare/mifwriter.h"

#include "prepare/plainnumber.h"

#include <QtMath>

#include <algorithm>
#include <cmath>
#include <utility>

namespace prep {

namespace {

constexpr int bufferSize = 1 << 20;
constexpr qint64 mostCurveChords = 4000000;

std::string upperName(std::string_view name)
{
    return QByteArray(name.data(), static_cast<int>(name.size())).toUpper().toStdString();
}

double valueOf(std::string_view digits)
{
    return toNumber(digits).value_or(0);
}

FlatVertex nextVertex(VertexCursor& cursor)
{
    FlatVertex vertex;
    cursor.next(vertex.xDigits, vertex.yDigits);
    vertex.x = valueOf(vertex.xDigits);
    vertex.y = valueOf(vertex.yDigits);
    return vertex;
}

} // namespace

MifWriter::MifWriter(QIODevice& mifOut, QIODevice& midOut, MidRows& rows, const RowForm& form,
    const PrepareOptions& options, PrepareReport& report)
    : m_mifOut(mifOut)
    , m_midOut(midOut)
    , m_rows(rows)
    , m_form(form)
    , m_options(options)
    , m_report(report)
    , m_chords(options.tolerance, mostCurveChords)
{
}

void MifWriter::start(const MifHeader& header, bool flattens, const QByteArray& charset)
{
    m_flattens = flattens;
    const auto transform = header.transform();
    if (flattens && transform) {
        m_report.note(Note::Transform);
        m_factors[0] = (*transform)[0];
        m_factors[1] = (*transform)[1];
        m_shifts[0] = (*transform)[2];
        m_shifts[1] = (*transform)[3];
        // Curves are drawn as the file has them, and the tolerance is meant for what comes of it.
        const double factor = std::max(std::abs(m_factors[0]), std::abs(m_factors[1]));
        m_chords = ChordMaker(m_options.tolerance / factor, mostCurveChords);
    }
    m_moves = flattens && (transform || m_options.scale != 1);
    const std::string text =
        header.text(m_form.splits ? ',' : m_form.delimiter, charset, !flattens);
    m_mif.append(text.data(), static_cast<int>(text.size()));
}

void MifWriter::flush(int limit)
{
    if (m_mif.size() >= limit)
        m_mifOut.write(std::exchange(m_mif, QByteArray()));
    if (m_mid.size() >= limit)
        m_midOut.write(std::exchange(m_mid, QByteArray()));
}

void MifWriter::finish()
{
    flush(0);
    // Blank lines at the end are no rows.
    qint64 left = 0;
    for (std::string_view row; m_rows.next(row);)
        left += trimmed(row).empty() ? 0 : 1;
    m_report.note(Note::MidTooLong, left);
}

// Rows

std::string MifWriter::splitRow(std::string_view row) const
{
    std::string result;
    result.reserve(row.size());
    const char* separator = "";
    const auto append = [&](bool first) {
        MidFields fields(row, m_form.delimiter);
        std::string_view field;
        for (size_t i = 0; fields.next(field); ++i) {
            if ((i == m_form.firstColumn) != first)
                continue;
            result.append(separator).append(midField(field));
            separator = ",";
        }
    };
    append(true);
    append(false);
    return result;
}

/// Reads the row of the next object, as the readers take it.
void MifWriter::takeRow()
{
    std::string_view row;
    if (!m_rows.next(row) && !m_rows.isEmpty())
        m_report.note(Note::MidTooShort);
    const bool isBroken = !m_form.splits && row.find('\n') != std::string_view::npos;
    m_row = m_form.splits || isBroken ? splitRow(row) : std::string(row);
    const bool isBlank = trimmed(m_row).empty();
    if (isBlank)
        m_row = "\"\"" + std::string(m_form.columns - 1, m_form.splits ? ',' : m_form.delimiter);
    m_report.note(Note::MidRows, (isBroken || (isBlank && !m_rows.isEmpty())) ? 1 : 0);
}

void MifWriter::writeRow()
{
    m_mid.append(m_row.data(), static_cast<int>(m_row.size())).append('\n');
    flush(bufferSize);
}

// Objects

void MifWriter::take(const MifObject& object)
{
    if (m_collected > 0)
        --m_collected;
    else
        takeRow();
    if (object.kind == MifKind::Collection && object.complete) {
        m_collected = object.collected;
        m_report.note(Note::CollectionParts);
        m_report.write("COLLECTION", true);
    } else if (!object.complete) {
        m_report.drop(upperName(object.name), Note::Incomplete);
    } else if (m_flattens) {
        flatten(object);
    } else {
        write(object);
        m_report.write(upperName(object.name), false);
    }
}

void MifWriter::flatten(const MifObject& object)
{
    const std::string name = upperName(object.name);
    switch (object.kind) {
    case MifKind::MultiPoint:
        if (!staysFinite(object)) {
            m_report.drop(name, Note::Incomplete);
            break;
        }
        writePoints(object);
        m_report.note(Note::PointsOfMultipoint);
        m_report.write(name, true);
        break;
    case MifKind::Arc:
    case MifKind::Rect:
    case MifKind::RoundRect:
    case MifKind::Ellipse:
        if (!writeShape(object)) {
            m_report.drop(name, Note::Incomplete);
            break;
        }
        m_report.note(Note::OutlineOfShape);
        m_report.note(Note::CoarseChords, m_chords.takeCoarse() ? 1 : 0);
        m_report.write(name, true);
        break;
    default:
        if (!staysFinite(object)) {
            m_report.drop(name, Note::Incomplete);
            break;
        }
        write(object);
        m_report.write(name, m_moves);
    }
}

double MifWriter::moved(double coordinate, size_t axis) const
{
    return (coordinate * m_factors[axis] + m_shifts[axis]) * m_options.scale;
}

/// Whether all coordinates are numbers where they are moved to.
bool MifWriter::staysFinite(const MifObject& object) const
{
    if (!m_moves)
        return true;
    VertexCursor cursor = object.vertices.cursor();
    std::string_view x;
    std::string_view y;
    while (cursor.next(x, y)) {
        if (!std::isfinite(moved(valueOf(x), 0)) || !std::isfinite(moved(valueOf(y), 1)))
            return false;
    }
    return true;
}

void MifWriter::vertex(std::string_view x, std::string_view y)
{
    if (m_moves)
        putVertex(plainText(moved(valueOf(x), 0)), plainText(moved(valueOf(y), 1)));
    else
        putVertex(x, y);
}

void MifWriter::putVertex(std::string_view x, std::string_view y)
{
    if (m_flattens && m_options.swapXY)
        std::swap(x, y);
    put(x);
    m_mif.append(' ');
    put(y);
}

void MifWriter::put(std::string_view text)
{
    m_mif.append(text.data(), static_cast<int>(text.size()));
}

/// Writes the line ends between the quotes as the format has them: the readers look for objects at
/// the start of each line.
void MifWriter::putText(std::string_view text)
{
    const size_t open = text.find('"');
    put(text.substr(0, open));
    text.remove_prefix(open);
    for (size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
        const std::string_view line = text.substr(0, end);
        put(line.substr(0, line.find_last_not_of('\r') + 1));
        m_mif.append("\\n");
        flush(bufferSize);
        text.remove_prefix(end + 1);
    }
    put(text);
}

/// Writes so many vertices, one a line.
void MifWriter::vertices(VertexCursor& cursor, size_t count)
{
    std::string_view x;
    std::string_view y;
    for (size_t i = 0; i < count && cursor.next(x, y); ++i) {
        vertex(x, y);
        m_mif.append('\n');
        flush(bufferSize);
    }
}

/// Writes all vertices on the line.
void MifWriter::corners(const MifObject& object)
{
    VertexCursor cursor = object.vertices.cursor();
    std::string_view x;
    std::string_view y;
    for (const char* before = ""; cursor.next(x, y); before = " ") {
        m_mif.append(before);
        vertex(x, y);
    }
}

void MifWriter::writeClauses(const MifObject& object)
{
    std::string_view rest = object.clauses;
    for (std::string_view clause = takeClause(rest); !clause.empty(); clause = takeClause(rest)) {
        m_mif.append("    ");
        put(clause);
        m_mif.append('\n');
        flush(bufferSize);
    }
}

void MifWriter::write(const MifObject& object)
{
    const auto count = [](size_t number) {
        return QByteArray::number(static_cast<qint64>(number));
    };
    VertexCursor cursor = object.vertices.cursor();
    switch (object.kind) {
    case MifKind::Point:
        m_mif.append("Point ");
        corners(object);
        m_mif.append('\n');
        ++m_report.points;
        break;
    case MifKind::Pline: {
        const bool isMultiple = object.parts.size() > 1;
        m_mif.append(isMultiple ? "Pline Multiple " + count(object.parts.size()) + '\n' : "Pline ");
        for (const uint32_t part : object.parts) {
            m_mif.append(isMultiple ? "  " + count(part) : count(part)).append('\n');
            vertices(cursor, part);
        }
        ++m_report.contours;
        break;
    }
    case MifKind::Region:
        m_mif.append("Region " + count(object.parts.size())).append('\n');
        for (const uint32_t part : object.parts) {
            m_mif.append("  " + count(part)).append('\n');
            vertices(cursor, part);
        }
        ++m_report.contours;
        break;
    case MifKind::Text:
        putText(object.text);
        m_mif.append("\n    ");
        corners(object);
        m_mif.append('\n');
        break;
    case MifKind::None:
        m_mif.append("None\n");
        break;
    case MifKind::MultiPoint:
        m_mif.append("MultiPoint " + count(object.vertices.size())).append('\n');
        vertices(cursor, object.vertices.size());
        break;
    default:
        m_report.contours += object.kind == MifKind::Line ? 1 : 0;
        put(object.name);
        m_mif.append(' ');
        corners(object);
        m_mif.append('\n');
        if (object.kind == MifKind::Arc)
            m_mif.append("  " + QByteArray::fromStdString(plainText(object.start)) + ' '
                + QByteArray::fromStdString(plainText(object.end)) + '\n');
        if (object.kind == MifKind::RoundRect)
            m_mif.append("  " + QByteArray::fromStdString(plainText(object.rounding)) + '\n');
    }
    writeClauses(object);
    writeRow();
}

void MifWriter::writePoints(const MifObject& object)
{
    MifObject point;
    point.kind = MifKind::Point;
    VertexCursor cursor = object.vertices.cursor();
    std::string_view x;
    std::string_view y;
    while (cursor.next(x, y)) {
        point.vertices.clear();
        point.vertices.append({ 0, 0, x, y });
        write(point);
    }
}

// Shapes: each is told by the rectangle around it ("MIF file layout" in MapInfo's description of
// the format); the angles of an arc are those of the parameter of its ellipse.

bool MifWriter::writeShape(const MifObject& object)
{
    MifObject outline;
    outline.kind = object.kind == MifKind::Arc ? MifKind::Pline : MifKind::Region;
    putOutline(object, outline.vertices);
    // A circle may have been drawn with nothing between its corners.
    const size_t least = object.kind == MifKind::Arc ? 2 : 3;
    if (outline.vertices.size() < least || !outline.vertices.isFinite() || !staysFinite(outline))
        return false;
    outline.parts = { static_cast<uint32_t>(outline.vertices.size()) };
    outline.clauses = object.clauses;
    write(outline);
    return true;
}

void MifWriter::putOutline(const MifObject& object, VertexRow& outline)
{
    VertexCursor cursor = object.vertices.cursor();
    const FlatVertex a = nextVertex(cursor);
    const FlatVertex b = nextVertex(cursor);
    if (object.kind == MifKind::Rect) {
        const FlatVertex right{ b.x, a.y, b.xDigits, a.yDigits };
        const FlatVertex left{ a.x, b.y, a.xDigits, b.yDigits };
        for (const FlatVertex& corner : { a, right, b, left, a })
            outline.append(corner);
        return;
    }
    m_chords.startContour();
    const double left = std::min(a.x, b.x);
    const double right = std::max(a.x, b.x);
    const double bottom = std::min(a.y, b.y);
    const double top = std::max(a.y, b.y);
    m_places.clear();
    Planar radii{ (right - left) / 2, (top - bottom) / 2 };
    if (object.kind == MifKind::Arc) {
        const Planar centre{ (left + right) / 2, (bottom + top) / 2 };
        const double sweep = object.end - object.start > 0 ? object.end - object.start
                                                           : object.end - object.start + 360;
        appendArc(centre, radii, object.start, sweep);
    } else {
        if (object.kind == MifKind::RoundRect) {
            radii.x = std::min(radii.x, std::abs(object.rounding) / 2);
            radii.y = std::min(radii.y, std::abs(object.rounding) / 2);
        }
        appendArc({ right - radii.x, top - radii.y }, radii, 0, 90);
        appendArc({ left + radii.x, top - radii.y }, radii, 90, 90);
        appendArc({ left + radii.x, bottom + radii.y }, radii, 180, 90);
        appendArc({ right - radii.x, bottom + radii.y }, radii, 270, 90);
        m_places.push_back(m_places.front());
    }
    const Planar* last = nullptr;
    for (const Planar& place : m_places) {
        if (!last || last->x != place.x || last->y != place.y)
            outline.append({ place.x, place.y, {}, {} });
        last = &place;
    }
}

/// Appends an arc of an ellipse, its ends included; angles are in degrees.
void MifWriter::appendArc(const Planar& centre, const Planar& radii, double start, double sweep)
{
    const auto appendAt = [&](double degrees) {
        double sine = 0;
        double cosine = 1;
        sinCosOfDegrees(degrees, &sine, &cosine);
        m_places.push_back({ centre.x + radii.x * cosine, centre.y + radii.y * sine });
    };
    appendAt(start);
    m_chords.appendInner({ centre.x, centre.y, 0 }, { radii.x, 0, 0 }, { 0, radii.y, 0 },
        qDegreesToRadians(start), qDegreesToRadians(sweep), m_places);
    appendAt(start + sweep);
}

} // namespace prep
