#include "prepare/dxfhatchreader.h"

#include "prepare/plainnumber.h"

#include <QtMath>

#include <cmath>

namespace prep {

void setAngles(ConicShape& conic, double start, double end)
{
    constexpr double fullTurn = 2 * M_PI;
    constexpr double noticeable = 1e-9;
    double sweep = std::fmod(end - start, fullTurn);
    if (sweep < noticeable)
        sweep += fullTurn;
    conic.start = start;
    conic.sweep = sweep;
    conic.full = conic.full || sweep > fullTurn - noticeable;
}

/// Appends a value of a spline, unless there are more than any has.
template <typename Value>
void SplineReader::append(std::vector<Value>& values, const Value& value)
{
    constexpr size_t most = 100000;
    if (values.size() < most)
        values.push_back(value);
    else
        m_tooLong = true;
}

double SplineReader::number(const DxfPair& pair)
{
    const std::optional<double> number = toNumber(pair.text());
    m_bad = m_bad || !number;
    return number.value_or(0);
}

void SplineReader::takePlace(std::vector<Vec3>& places, const DxfPair& pair, int xCode)
{
    if (pair.code == xCode) {
        append(places, { number(pair), 0, 0 });
    } else if (places.empty()) {
        m_bad = true;
    } else {
        (pair.code == xCode + 10 ? places.back().y : places.back().z) = number(pair);
    }
}

bool SplineReader::take(const DxfPair& pair)
{
    switch (pair.code) {
    case 40:
        append(m_spline.knots, number(pair));
        return true;
    case 41:
        append(m_spline.weights, number(pair));
        return true;
    case 10:
    case 20:
    case 30:
        takePlace(m_spline.controls, pair, 10);
        return true;
    case 11:
    case 21:
    case 31:
        takePlace(m_spline.fits, pair, 11);
        return true;
    default:
        return false;
    }
}

SplineShape SplineReader::spline()
{
    return std::move(m_spline);
}

namespace {

enum EdgeType { LineEdge = 1, ArcEdge = 2, EllipseEdge = 3, SplineEdge = 4 };
constexpr int polylineFlag = 2;

/// The boundaries of a HATCH are told apart by the order of their pairs alone: "HATCH" and
/// "Boundary Path Data" in Autodesk's DXF reference.
class BoundaryReader {
public:
    BoundaryReader(DxfRecords& records, DxfFields& fields, BoundarySink* sink)
        : m_records(records)
        , m_fields(fields)
        , m_sink(sink)
    {
    }

    bool read()
    {
        while (pair()) {
            if (m_pair.code == 92 && m_pathsLeft > 0)
                startBoundary();
            else if (m_pair.code == 91)
                m_pathsLeft = toWhole(m_pair.text()).value_or(0);
            else if (m_inBoundary)
                takeBoundaryPair();
            else
                m_fields.take(m_pair);
        }
        endEdge();
        return m_good;
    }

private:
    bool pair() { return m_records.pair(m_pair); }

    void startBoundary()
    {
        endEdge();
        --m_pathsLeft;
        m_inBoundary = true;
        m_isPolyline = (toWhole(m_pair.text()).value_or(0) & polylineFlag) != 0;
        if (m_sink)
            m_sink->startBoundary();
    }

    void takeBoundaryPair()
    {
        // 97 counts the source objects, behind the last edge; within a spline it counts fit points.
        if (m_pair.code == 75 || (m_pair.code == 97 && m_edgeType != SplineEdge)) {
            endEdge();
            m_inBoundary = false;
            m_fields.take(m_pair);
        } else if (m_isPolyline) {
            takeVertexPair();
        } else if (m_pair.code == 72) {
            endEdge();
            m_edgeType = toWhole(m_pair.text()).value_or(0);
            m_good = m_good && m_edgeType >= LineEdge && m_edgeType <= SplineEdge;
        } else if (m_edgeType == SplineEdge) {
            takeSplinePair();
        } else {
            m_edge.take(m_pair);
        }
    }

    void takeVertexPair()
    {
        if (m_pair.code != 10 && m_pair.code != 20 && m_pair.code != 42)
            return;
        const std::optional<Coordinate> coordinate = toCoordinate(m_pair.value);
        m_good = m_good && coordinate && (m_pair.code == 10 || m_place);
        if (!m_good)
            return;
        if (m_pair.code == 10) {
            endVertex();
            m_place = Place{ *coordinate, { 0, coordinate->digits.substr(0, 0) } };
        } else if (m_pair.code == 20) {
            m_place->y = *coordinate;
        } else {
            m_bulge = coordinate->value;
        }
    }

    void endVertex()
    {
        if (m_place && m_good) {
            m_good = m_path.vertices.append(*m_place);
            if (m_bulge != 0 && m_good)
                m_path.vertices.setBulge(m_bulge);
        }
        m_place.reset();
        m_bulge = 0;
    }

    void takeSplinePair()
    {
        // The weight of a control point stands behind it as code 42 here.
        DxfPair pair = m_pair;
        if (pair.code == 42)
            pair.code = 41;
        if (!m_spline.take(pair))
            m_edge.take(pair);
    }

    void endEdge()
    {
        if (m_inBoundary && m_isPolyline) {
            endVertex();
            m_path.closed = true;
            hand(m_path);
            m_path = PathShape();
        } else if (m_inBoundary && m_edgeType == LineEdge) {
            hand(line());
        } else if (m_inBoundary && m_edgeType == SplineEdge) {
            hand(spline());
        } else if (m_inBoundary && m_edgeType != 0) {
            hand(conic());
        }
        m_isPolyline = false;
        m_edgeType = 0;
        m_edge = DxfFields();
        m_spline = SplineReader();
    }

    void hand(const HatchEdge& edge)
    {
        m_good = m_good && !m_edge.isBad();
        if (m_sink)
            m_sink->takeEdge(edge);
    }

    PathShape line()
    {
        PathShape line;
        m_good = line.vertices.append(m_edge.place(10)) && line.vertices.append(m_edge.place(11))
            && m_good;
        return line;
    }

    SplineShape spline()
    {
        SplineShape spline = m_spline.spline();
        spline.degree = m_edge.whole(94);
        m_good = m_good && !m_spline.isBad() && !m_spline.isTooLong();
        return spline;
    }

    ConicShape conic()
    {
        ConicShape conic;
        conic.centre = m_edge.place(10);
        if (m_edgeType == ArcEdge) {
            conic.first = { m_edge.number(40), 0, 0 };
            conic.second = { 0, conic.first.x, 0 };
        } else {
            conic.first = m_edge.vec(11);
            conic.second = Vec3{ -conic.first.y, conic.first.x, 0 } * m_edge.number(40, 1);
        }
        setAngles(
            conic, qDegreesToRadians(m_edge.number(50)), qDegreesToRadians(m_edge.number(51, 360)));
        // The angles of a clockwise edge are counted clockwise.
        if (m_edge.whole(73, 1) == 0) {
            conic.start = -conic.start;
            conic.sweep = -conic.sweep;
        }
        return conic;
    }

    DxfRecords& m_records;
    DxfFields& m_fields;
    BoundarySink* m_sink;
    DxfPair m_pair;
    int m_pathsLeft = 0;
    bool m_inBoundary = false;
    bool m_isPolyline = false;
    int m_edgeType = 0;
    DxfFields m_edge;
    SplineReader m_spline;
    PathShape m_path; ///< a boundary that is a polyline
    std::optional<Place> m_place; ///< of its last vertex
    double m_bulge = 0;
    bool m_good = true;
};

} // namespace

bool readBoundaries(DxfRecords& records, DxfFields& fields, BoundarySink* sink)
{
    return BoundaryReader(records, fields, sink).read();
}

} // namespace prep
