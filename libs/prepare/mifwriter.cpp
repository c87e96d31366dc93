#include "prepare/mifwriter.h"

#include "prepare/plainnumber.h"

#include <QtMath>

#include <algorithm>
#include <cmath>
#include <utility>

namespace prep {

namespace {

constexpr int bufferSize = 1 << 20;
constexpr qint64 mostChords = 4000000;

std::string upperName(std::string_view name)
{
    return QByteArray(name.data(), static_cast<int>(name.size())).toUpper().toStdString();
}

FlatVertex plain(double x, double y)
{
    return { x, y, {}, {} };
}

} // namespace

MifWriter::MifWriter(QIODevice& mifOut, QIODevice& midOut, const MidRows& rows, const RowForm& form,
    const PrepareOptions& options, PrepareReport& report)
    : m_mifOut(mifOut)
    , m_midOut(midOut)
    , m_rows(rows)
    , m_form(form)
    , m_options(options)
    , m_report(report)
    , m_chords(options.tolerance * std::abs(options.scale), mostChords)
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
    if (m_nextRow < m_rows.size()) {
        // Blank lines at the end are no rows.
        qint64 left = 0;
        for (size_t i = m_nextRow; i < m_rows.size(); ++i)
            left += trimmed(m_rows.row(i)).empty() ? 0 : 1;
        m_report.note(Note::MidTooLong, left);
    }
}

// Rows

std::string MifWriter::splitRow(std::string_view row) const
{
    std::vector<std::string_view> fields = midFields(row, m_form.delimiter);
    if (m_form.firstColumn < fields.size()) {
        const auto first = fields.begin() + static_cast<std::ptrdiff_t>(m_form.firstColumn);
        std::rotate(fields.begin(), first, first + 1);
    }
    std::string result;
    for (size_t i = 0; i < fields.size(); ++i)
        result.append(i == 0 ? "" : ",").append(midField(fields[i]));
    return result;
}

/// Reads the row of the next object, as the readers take it.
void MifWriter::takeRow()
{
    const std::string_view row = m_nextRow < m_rows.size() ? m_rows.row(m_nextRow) : "";
    if (m_nextRow >= m_rows.size() && m_rows.size() > 0)
        m_report.note(Note::MidTooShort);
    ++m_nextRow;
    m_row = m_form.splits ? splitRow(row) : std::string(row);
    const bool isBroken = !m_form.splits && m_row.find('\n') != std::string::npos;
    if (isBroken)
        m_row = splitRow(row);
    const bool isBlank = trimmed(m_row).empty();
    if (isBlank)
        m_row = "\"\"" + std::string(m_form.columns - 1, m_form.splits ? ',' : m_form.delimiter);
    m_report.note(Note::MidRows, (isBroken || (isBlank && m_rows.size() > 0)) ? 1 : 0);
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
        writePoints(object);
        m_report.note(Note::PointsOfMultipoint);
        m_report.write(name, true);
        break;
    case MifKind::Arc:
    case MifKind::Rect:
    case MifKind::RoundRect:
    case MifKind::Ellipse:
        writeShape(object);
        m_report.note(Note::OutlineOfShape);
        m_report.note(Note::CoarseChords, m_chords.takeCoarse() ? 1 : 0);
        m_report.write(name, true);
        break;
    default:
        write(object);
        m_report.write(name, m_moves);
    }
}

FlatVertex MifWriter::moved(FlatVertex vertex) const
{
    if (m_moves) {
        const double x = (vertex.x * m_factors[0] + m_shifts[0]) * m_options.scale;
        const double y = (vertex.y * m_factors[1] + m_shifts[1]) * m_options.scale;
        vertex = plain(x, y);
    }
    if (m_flattens && m_options.swapXY) {
        std::swap(vertex.x, vertex.y);
        std::swap(vertex.xDigits, vertex.yDigits);
    }
    return vertex;
}

void MifWriter::vertex(const FlatVertex& vertex)
{
    const FlatVertex place = moved(vertex);
    const auto coordinate = [this](double value, std::string_view digits) {
        const std::string text = digits.empty() ? plainText(value) : std::string(digits);
        m_mif.append(text.data(), static_cast<int>(text.size()));
    };
    coordinate(place.x, place.xDigits);
    m_mif.append(' ');
    coordinate(place.y, place.yDigits);
}

void MifWriter::vertices(const std::vector<FlatVertex>& vertices)
{
    for (const FlatVertex& place : vertices) {
        vertex(place);
        m_mif.append('\n');
    }
}

void MifWriter::writeClauses(const MifObject& object)
{
    for (const std::string_view clause : object.clauses)
        m_mif.append("    ").append(clause.data(), static_cast<int>(clause.size())).append('\n');
}

void MifWriter::write(const MifObject& object)
{
    const auto count = [](size_t number) {
        return QByteArray::number(static_cast<qint64>(number));
    };
    switch (object.kind) {
    case MifKind::Point:
        m_mif.append("Point ");
        vertex(object.parts[0][0]);
        m_mif.append('\n');
        ++m_report.points;
        break;
    case MifKind::Pline: {
        const bool isMultiple = object.parts.size() > 1;
        m_mif.append(isMultiple ? "Pline Multiple " + count(object.parts.size()) + '\n' : "Pline ");
        for (const auto& part : object.parts) {
            m_mif.append(isMultiple ? "  " + count(part.size()) : count(part.size())).append('\n');
            vertices(part);
        }
        ++m_report.contours;
        break;
    }
    case MifKind::Region:
        m_mif.append("Region " + count(object.parts.size())).append('\n');
        for (const auto& part : object.parts) {
            m_mif.append("  " + count(part.size())).append('\n');
            vertices(part);
        }
        ++m_report.contours;
        break;
    case MifKind::Text:
        m_mif.append(object.text.data(), static_cast<int>(object.text.size())).append("\n    ");
        vertex(object.parts[0][0]);
        m_mif.append(' ');
        vertex(object.parts[0][1]);
        m_mif.append('\n');
        break;
    case MifKind::None:
        m_mif.append("None\n");
        break;
    case MifKind::MultiPoint:
        m_mif.append("MultiPoint " + count(object.parts[0].size())).append('\n');
        vertices(object.parts[0]);
        break;
    default:
        m_report.contours += object.kind == MifKind::Line ? 1 : 0;
        m_mif.append(object.name.data(), static_cast<int>(object.name.size()));
        for (const FlatVertex& corner : object.parts[0]) {
            m_mif.append(' ');
            vertex(corner);
        }
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
    for (const FlatVertex& place : object.parts[0]) {
        point.parts = { { place } };
        write(point);
    }
}

// Shapes: each is told by the rectangle around it ("MIF file layout" in MapInfo's description of
// the format); the angles of an arc are those of the parameter of its ellipse.

void MifWriter::writeShape(const MifObject& object)
{
    MifObject outline;
    outline.kind = object.kind == MifKind::Arc ? MifKind::Pline : MifKind::Region;
    outline.parts = { outlineOf(object) };
    outline.clauses = object.clauses;
    write(outline);
}

std::vector<FlatVertex> MifWriter::outlineOf(const MifObject& object)
{
    const FlatVertex& a = object.parts[0][0];
    const FlatVertex& b = object.parts[0][1];
    if (object.kind == MifKind::Rect) {
        const auto corner = [](const FlatVertex& x, const FlatVertex& y) {
            return FlatVertex{ x.x, y.y, x.xDigits, y.yDigits };
        };
        return { a, corner(b, a), b, corner(a, b), a };
    }
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
    std::vector<FlatVertex> outline;
    for (const Planar& place : m_places) {
        if (outline.empty() || outline.back().x != place.x || outline.back().y != place.y)
            outline.push_back(plain(place.x, place.y));
    }
    return outline;
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
