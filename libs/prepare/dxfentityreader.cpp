#include "prepare/dxfentityreader.h"

#include "prepare/dxffields.h"
#include "prepare/dxfhatchreader.h"
#include "prepare/plainnumber.h"

#include <QtMath>

#include <algorithm>
#include <iterator>

namespace prep {

namespace {

using Reason = std::optional<Note>;
using ReadShape = Reason (*)(DxfRecords&, Entity&);

Reason badIf(bool bad)
{
    return bad ? Reason(Note::Incomplete) : Reason();
}

/// Reads the pairs of an entity that has no more to it.
DxfFields readFields(DxfRecords& records, Entity& entity)
{
    DxfFields fields;
    fields.readAll(records);
    fields.fill(entity);
    return fields;
}

Reason finish(const DxfFields& fields, Entity& entity, Shape shape)
{
    if (fields.isInPaperSpace())
        return Note::PaperSpace;
    entity.shape = std::move(shape);
    return badIf(fields.isBad());
}

Reason readPoint(DxfRecords& records, Entity& entity)
{
    DxfFields fields = readFields(records, entity);
    entity.extrusion = Vec3{ 0, 0, 1 }; // coordinates of the world
    PointShape shape{ fields.place(10) };
    return finish(fields, entity, shape);
}

Reason readLine(DxfRecords& records, Entity& entity)
{
    DxfFields fields = readFields(records, entity);
    entity.extrusion = Vec3{ 0, 0, 1 }; // coordinates of the world
    PathShape shape{ { { fields.place(10) }, { fields.place(11) } }, false };
    return finish(fields, entity, std::move(shape));
}

// Polylines

/// The number of vertices and the flag of a LWPOLYLINE: the readers need them once, and before the
/// first vertex.
class LwpolylineForm {
public:
    void take(const DxfPair& pair, bool isBeforeVertices)
    {
        if (pair.code != 90 && pair.code != 70)
            return;
        m_late = m_late || !isBeforeVertices;
        if (pair.code == 70) {
            m_flagged = true;
            return;
        }
        m_counts += 1;
        m_count = pair.text();
    }
    bool isTold(const PathShape& shape) const
    {
        return !m_late && m_counts == 1 && (m_flagged || !shape.closed)
            && m_count == std::to_string(shape.vertices.size());
    }

private:
    std::string_view m_count;
    int m_counts = 0;
    bool m_flagged = false;
    bool m_late = false;
};

Reason readLwpolyline(DxfRecords& records, Entity& entity)
{
    DxfFields fields;
    PathShape shape;
    LwpolylineForm form;
    bool bad = false;
    int coordinates = 0;
    int lastCode = 0; ///< of a coordinate
    DxfPair pair;
    while (records.pair(pair)) {
        if (pair.code == 10 || pair.code == 20) {
            // A pair of coordinates makes a vertex, whichever of them comes first.
            const bool isFirst = coordinates++ % 2 == 0;
            if (isFirst)
                shape.vertices.emplace_back();
            bad = bad || (!isFirst && pair.code == lastCode);
            lastCode = pair.code;
            const auto coordinate = toCoordinate(pair.value);
            bad = bad || !coordinate;
            Place& place = shape.vertices.back().place;
            (pair.code == 10 ? place.x : place.y) = coordinate.value_or(Coordinate());
        } else if (pair.code == 42 && !shape.vertices.empty()) {
            shape.vertices.back().bulge = toBulge(pair.value);
        } else {
            form.take(pair, shape.vertices.empty());
            fields.take(pair);
        }
    }
    fields.fill(entity);
    const double elevation = fields.lenientNumber(38);
    for (PathVertex& vertex : shape.vertices)
        vertex.place.z = elevation;
    shape.closed = (fields.whole(70) & 1) != 0;
    shape.isTold = form.isTold(shape);
    bad = bad || coordinates % 2 != 0 || shape.vertices.size() < 2;
    const Reason reason = finish(fields, entity, std::move(shape));
    return reason ? reason : badIf(bad);
}

enum PolylineFlag { Closed = 1, SplineFit = 4, Spatial = 8, PolygonMesh = 16, PolyfaceMesh = 64 };
constexpr int splineFrameVertex = 16;

/// Reads the vertices of a POLYLINE, and its end. False when something about them is bad.
bool readVertices(DxfRecords& records, bool isFitted, PathShape& shape)
{
    bool good = true;
    while (records.next()) {
        if (records.type() == "SEQEND")
            return good;
        if (records.type() != "VERTEX") {
            records.unread();
            break;
        }
        DxfFields fields;
        fields.readAll(records);
        // The readers take a flag of any vertex for that of the polyline.
        shape.isTold = shape.isTold && (shape.closed || fields.text(70) != "1");
        if (isFitted && (fields.whole(70) & splineFrameVertex) != 0)
            continue;
        shape.vertices.push_back(
            { fields.place(10), fields.has(42) ? toBulge(fields.text(42)) : 0 });
        good = good && !fields.isBad();
    }
    shape.isTold = false;
    return good;
}

Reason readPolyline(DxfRecords& records, Entity& entity)
{
    DxfFields fields = readFields(records, entity);
    const int flags = fields.whole(70);
    PathShape shape;
    shape.closed = (flags & Closed) != 0;
    shape.isTold = !shape.closed || fields.text(70) == "1";
    const bool good = readVertices(records, (flags & SplineFit) != 0, shape);
    if ((flags & (PolygonMesh | PolyfaceMesh)) != 0)
        return fields.isInPaperSpace() ? Note::PaperSpace : Note::Mesh;
    if ((flags & Spatial) != 0) {
        entity.extrusion = Vec3{ 0, 0, 1 }; // coordinates of the world
    } else {
        const double elevation = fields.lenientNumber(30);
        for (PathVertex& vertex : shape.vertices)
            vertex.place.z = elevation;
    }
    const bool bad = !good || shape.vertices.size() < 2;
    const Reason reason = finish(fields, entity, std::move(shape));
    return reason ? reason : badIf(bad);
}

// Curves

Reason readArc(DxfRecords& records, Entity& entity)
{
    DxfFields fields = readFields(records, entity);
    ConicShape shape;
    shape.centre = fields.place(10);
    const double radius = fields.number(40);
    shape.first = { radius, 0, 0 };
    shape.second = { 0, radius, 0 };
    shape.full = entity.type == "CIRCLE";
    setAngles(shape, qDegreesToRadians(shape.full ? 0 : fields.number(50)),
        qDegreesToRadians(shape.full ? 360 : fields.number(51)));
    const Reason reason = finish(fields, entity, shape);
    return reason ? reason : badIf(!fields.has(40) || radius <= 0);
}

Reason readEllipse(DxfRecords& records, Entity& entity)
{
    DxfFields fields = readFields(records, entity);
    ConicShape shape;
    shape.centre = fields.place(10);
    shape.first = fields.vec(11);
    const double normalLength = length(entity.extrusion);
    shape.second = cross(entity.extrusion, shape.first)
        * (fields.number(40, 1) / (normalLength > 0 ? normalLength : 1));
    setAngles(shape, fields.number(41, 0), fields.number(42, 2 * M_PI));
    entity.extrusion = Vec3{ 0, 0, 1 }; // coordinates of the world
    const Reason reason = finish(fields, entity, shape);
    return reason ? reason : badIf(length(shape.first) == 0);
}

Reason readSpline(DxfRecords& records, Entity& entity)
{
    DxfFields fields;
    SplineReader reader;
    DxfPair pair;
    while (records.pair(pair)) {
        if (!reader.take(pair))
            fields.take(pair);
    }
    fields.fill(entity);
    entity.extrusion = Vec3{ 0, 0, 1 }; // coordinates of the world
    SplineShape shape = reader.spline();
    shape.degree = fields.whole(71);
    shape.closed = (fields.whole(70) & 1) != 0;
    const bool bad = reader.isBad() || (shape.controls.empty() && shape.fits.size() < 2);
    const Reason reason = finish(fields, entity, std::move(shape));
    return reason ? reason : badIf(bad);
}

// Labels

Reason readLabel(DxfRecords& records, Entity& entity)
{
    const bool isText = entity.type == "TEXT";
    constexpr int invisibleFlag = 1;
    constexpr int constantFlag = 2;
    DxfFields fields = readFields(records, entity);
    if (entity.type == "ATTDEF" && (fields.whole(70) & constantFlag) == 0)
        return fields.isInPaperSpace() ? Note::PaperSpace : Note::NoContour;
    LabelShape shape;
    shape.horizontal = fields.whole(72);
    shape.vertical = fields.whole(isText ? 73 : 74);
    const bool isJustified = shape.horizontal != 0 || shape.vertical != 0;
    shape.place = fields.place(isJustified && fields.has(11) && fields.has(21) ? 11 : 10);
    shape.text = fields.text(1);
    shape.height = fields.lenientNumber(40, 1);
    shape.rotation = fields.lenientNumber(50);
    entity.invisible = entity.invisible || (!isText && (fields.whole(70) & invisibleFlag) != 0);
    const Reason reason = finish(fields, entity, std::move(shape));
    return reason ? reason : badIf(!fields.has(1));
}

Reason readMText(DxfRecords& records, Entity& entity)
{
    DxfFields fields;
    LabelShape shape;
    DxfPair pair;
    bool embedded = false;
    while (records.pair(pair)) {
        embedded = embedded || pair.code == 101;
        // A long text comes in pieces of code 3, the last one of code 1.
        if (!embedded && (pair.code == 3 || pair.code == 1))
            shape.text += pair.value;
        fields.take(pair);
    }
    fields.fill(entity);
    entity.extrusion = Vec3{ 0, 0, 1 }; // coordinates of the world
    shape.place = fields.place(10);
    shape.height = fields.lenientNumber(40, 1);
    shape.rotation = fields.lenientNumber(50);
    if (fields.has(11))
        shape.direction = fields.vec(11);
    // Attachment points run from 1, top left, to 9, bottom right.
    const int attachment = std::clamp(fields.whole(71, 1), 1, 9) - 1;
    shape.horizontal = attachment % 3;
    shape.vertical = 3 - attachment / 3;
    return finish(fields, entity, std::move(shape));
}

// References to blocks

Reason readInsert(DxfRecords& records, Entity& entity)
{
    DxfFields fields = readFields(records, entity);
    InsertShape shape;
    shape.block = fields.text(2);
    shape.place = fields.place(10);
    shape.scale = { fields.number(41, 1), fields.number(42, 1), fields.number(43, 1) };
    shape.rotation = fields.number(50);
    shape.columns = std::max(fields.whole(70, 1), 1);
    shape.rows = std::max(fields.whole(71, 1), 1);
    shape.columnStep = fields.number(44);
    shape.rowStep = fields.number(45);
    while (records.next()) {
        if (records.type() != "ATTRIB") {
            if (records.type() != "SEQEND")
                records.unread();
            break;
        }
        Entity attribute;
        if (!readEntity(records, attribute))
            shape.attributes.push_back(std::move(attribute));
    }
    return finish(fields, entity, std::move(shape));
}

Reason readDimension(DxfRecords& records, Entity& entity)
{
    DxfFields fields = readFields(records, entity);
    return finish(fields, entity, DimensionShape{ fields.text(2) });
}

Reason readHatch(DxfRecords& records, Entity& entity)
{
    DxfFields fields;
    HatchShape shape;
    const bool good = readBoundaries(records, fields, shape);
    fields.fill(entity);
    const Reason reason = finish(fields, entity, std::move(shape));
    return reason ? reason : badIf(!good);
}

// Everything else

template <Note note>
Reason passOver(DxfRecords& records, Entity& entity)
{
    return readFields(records, entity).isInPaperSpace() ? Note::PaperSpace : note;
}

constexpr struct {
    std::string_view type;
    ReadShape read;
} readers[] = {
    { "LINE", readLine },
    { "LWPOLYLINE", readLwpolyline },
    { "POLYLINE", readPolyline },
    { "POINT", readPoint },
    { "TEXT", readLabel },
    { "MTEXT", readMText },
    { "INSERT", readInsert },
    { "ATTRIB", readLabel },
    { "ARC", readArc },
    { "CIRCLE", readArc },
    { "ELLIPSE", readEllipse },
    { "SPLINE", readSpline },
    { "HATCH", readHatch },
    { "DIMENSION", readDimension },
    { "ATTDEF", readLabel },
    { "SOLID", passOver<Note::Surface> },
    { "TRACE", passOver<Note::Surface> },
    { "3DFACE", passOver<Note::Surface> },
    { "MESH", passOver<Note::Mesh> },
    { "WIPEOUT", passOver<Note::Surface> },
    { "IMAGE", passOver<Note::NoContour> },
    { "VIEWPORT", passOver<Note::NoContour> },
    { "LEADER", passOver<Note::NoContour> },
    { "MULTILEADER", passOver<Note::NoContour> },
    { "TOLERANCE", passOver<Note::NoContour> },
    { "RAY", passOver<Note::NoContour> },
    { "XLINE", passOver<Note::NoContour> },
    { "OLEFRAME", passOver<Note::NoContour> },
    { "OLE2FRAME", passOver<Note::NoContour> },
    { "LIGHT", passOver<Note::NoContour> },
    { "SEQEND", passOver<Note::NoContour> },
};

} // namespace

Reason readEntity(DxfRecords& records, Entity& entity)
{
    entity = Entity();
    entity.type = records.type();
    const auto* const found = std::find_if(std::begin(readers), std::end(readers),
        [&entity](const auto& reader) { return reader.type == entity.type; });
    const ReadShape read = found == std::end(readers) ? passOver<Note::Unreadable> : found->read;
    return read(records, entity);
}

} // namespace prep
