#include "prepare/contourbuilder.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace prep {

namespace {

FlatVertex swapped(FlatVertex vertex)
{
    std::swap(vertex.x, vertex.y);
    std::swap(vertex.xDigits, vertex.yDigits);
    return vertex;
}

double distance(const FlatVertex& a, const FlatVertex& b)
{
    return std::hypot(a.x - b.x, a.y - b.y);
}

/// Whether two vertices differ by no more than what sines and cosines leave.
bool isSame(const FlatVertex& a, const FlatVertex& b)
{
    return distance(a, b) <= 1e-12 * (1 + std::abs(a.x) + std::abs(a.y));
}

} // namespace

void ContourBuilder::start(const Affine& map)
{
    m_map = map;
    m_chords.startContour();
    m_vertices.clear();
    m_last.reset();
    m_hasBulges = false;
    m_hasFitPoints = false;
}

FlatVertex ContourBuilder::vertex(const Place& place) const
{
    if (!m_map.isIdentity()) {
        const Vec3 moved = m_map.place(place.vec());
        return vertex(Planar{ moved.x, moved.y });
    }
    const FlatVertex vertex{ place.x.value, place.y.value, place.x.digits, place.y.digits };
    return m_swapXY ? swapped(vertex) : vertex;
}

FlatVertex ContourBuilder::vertex(const Planar& place) const
{
    const FlatVertex vertex{ place.x, place.y, {}, {} };
    return m_swapXY ? swapped(vertex) : vertex;
}

void ContourBuilder::put(const FlatVertex& vertex)
{
    if (m_inEdge)
        m_edge.push_back(vertex);
    else
        m_vertices.append(vertex);
}

void ContourBuilder::putPlaces()
{
    for (const Planar& place : m_places)
        put(vertex(place));
    m_places.clear();
}

void ContourBuilder::append(const PathShape& path)
{
    const size_t count = path.vertices.size();
    for (size_t i = 0; i < count; ++i) {
        const Place from = path.vertices.place(i);
        const double bulge = path.vertices.bulge(i);
        put(vertex(from));
        if (bulge == 0 || (i + 1 == count && !path.closed))
            continue;
        const Vec3 start = from.vec();
        const Vec3 end = path.vertices.place((i + 1) % count).vec();
        if (start.x == end.x && start.y == end.y)
            continue;
        m_hasBulges = true;
        m_chords.appendBulge(start, end, bulge, m_map, m_places);
        putPlaces();
    }
}

void ContourBuilder::append(const ConicShape& conic)
{
    const Vec3 centre = m_map.place(conic.centre.vec());
    const Vec3 first = m_map.direction(conic.first);
    const Vec3 second = m_map.direction(conic.second);
    const auto appendAt = [&](double t) {
        const Vec3 place = centre + first * std::cos(t) + second * std::sin(t);
        m_places.push_back({ place.x, place.y });
    };
    appendAt(conic.start);
    m_chords.appendInner(centre, first, second, conic.start, conic.sweep, m_places);
    if (!conic.full)
        appendAt(conic.start + conic.sweep);
    putPlaces();
}

bool ContourBuilder::append(const SplineShape& spline)
{
    if (!m_chords.appendSpline(spline, m_map, m_places)) {
        if (spline.fits.size() < 2)
            return false;
        m_hasFitPoints = true;
        for (const Vec3& fit : spline.fits) {
            const Vec3 place = m_map.place(fit);
            m_places.push_back({ place.x, place.y });
        }
    }
    putPlaces();
    return true;
}

bool ContourBuilder::appendShape(const HatchEdge& shape)
{
    if (const auto* path = std::get_if<PathShape>(&shape))
        append(*path);
    else if (const auto* conic = std::get_if<ConicShape>(&shape))
        append(*conic);
    else
        return append(std::get<SplineShape>(shape));
    return true;
}

bool ContourBuilder::appendEdge(const HatchEdge& edge)
{
    const auto* const path = std::get_if<PathShape>(&edge);
    if (path && path->closed) {
        append(*path);
        return true;
    }
    m_edge.clear();
    m_inEdge = true;
    const bool drawn = appendShape(edge);
    m_inEdge = false;
    if (!drawn || m_edge.empty())
        return drawn;
    if (m_last && distance(*m_last, m_edge.back()) < distance(*m_last, m_edge.front()))
        std::reverse(m_edge.begin(), m_edge.end());
    const bool meets = m_last && isSame(*m_last, m_edge.front());
    for (size_t i = meets ? 1 : 0; i < m_edge.size(); ++i)
        m_vertices.append(m_edge[i]);
    m_last = m_edge.back();
    return true;
}

} // namespace prep
