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
    PathShape shape;
    const bool good =
        shape.vertices.append(fields.place(10)) && shape.vertices.append(fields.place(11));
    const Reason reason = finish(fields, entity, std::move(shape));
    return reason ? reason : badIf(!good);
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

/// The vertices of a LWPOLYLINE: a pair of coordinates makes one, whichever of them comes first.
class LwpolylineVertices {
public:
    explicit LwpolylineVertices(PathVertices& vertices)
        : m_vertices(vertices)
    {
    }

    /// False for a pair that belongs to no vertex.
    bool take(const DxfPair& pair)
    {
        if (pair.code == 10 || pair.code == 20)
            takeCoordinate(pair);
        else if (pair.code == 42 && !isEmpty())
            takeBulge(toBulge(pair.value));
        else
            return false;
        return true;
    }
    bool isEmpty() const { return m_firstCode == 0; }
    bool isBad() const { return m_bad || m_inVertex; }

private:
    void takeCoordinate(const DxfPair& pair)
    {
        const std::optional<Coordinate> coordinate = toCoordinate(pair.value);
        m_bad = m_bad || !coordinate || (m_inVertex && pair.code == m_firstCode);
        (pair.code == 10 ? m_place.x : m_place.y) = coordinate.value_or(Coordinate());
        if (m_inVertex) {
            m_bad = m_bad || !m_vertices.append(m_place);
            if (m_bulge != 0 && !m_bad)
                m_vertices.setBulge(m_bulge);
        } else {
            m_firstCode = pair.code;
            m_bulge = 0;
        }
        m_inVertex = !m_inVertex;
    }

    void takeBulge(double bulge)
    {
        if (m_inVertex)
            m_bulge = bulge;
        else if (!m_bad)
            m_vertices.setBulge(bulge);
    }

    PathVertices& m_vertices;
    Place m_place;
    int m_firstCode = 0; ///< that of the coordinate that began the last vertex
    bool m_inVertex = false; ///< one of its coordinates is still to come
    double m_bulge = 0; ///< of a vertex that is not there yet
    bool m_bad = false;
};

Reason readLwpolyline(DxfRecords& records, Entity& entity)
{
    DxfFields fields;
    PathShape shape;
    LwpolylineForm form;
    LwpolylineVertices vertices(shape.vertices);
    DxfPair pair;
    while (records.pair(pair)) {
        if (vertices.take(pair))
            continue;
        form.take(pair, vertices.isEmpty());
        fields.take(pair);
    }
    fields.fill(entity);
    shape.vertices.setElevation(fields.lenientNumber(38));
    shape.closed = (fields.whole(70) & 1) != 0;
    shape.isTold = form.isTold(shape);
    const bool bad = vertices.isBad() || shape.vertices.size() < 2;
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
        const Place place = fields.place(10);
        good = good && !fields.isBad() && shape.vertices.append(place);
        if (good && fields.has(42))
            shape.vertices.setBulge(toBulge(fields.text(42)));
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
        shape.vertices.setElevation(fields.lenientNumber(30));
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
    const bool tooLong = reader.isTooLong();
    SplineShape shape = reader.spline();
    shape.degree = fields.whole(71);
    shape.closed = (fields.whole(70) & 1) != 0;
    if (tooLong)
        return fields.isInPaperSpace() ? Note::PaperSpace : Note::TooMuch;
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

void passAttributes(DxfRecords& records)
{
    while (records.next()) {
        if (records.type() == "SEQEND")
            return;
        if (records.type() != "ATTRIB") {
            records.unread();
            return;
        }
    }
}

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
    shape.attributes = records.nextPosition();
    passAttributes(records);
    return finish(fields, entity, shape);
}

Reason readDimension(DxfRecords& records, Entity& entity)
{
    DxfFields fields = readFields(records, entity);
    return finish(fields, entity, DimensionShape{ fields.text(2) });
}

Reason readHatch(DxfRecords& records, Entity& entity)
{
    DxfFields fields;
    const HatchShape shape{ records.position() };
    const bool good = readBoundaries(records, fields, nullptr);
    fields.fill(entity);
    const Reason reason = finish(fields, entity, shape);
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
