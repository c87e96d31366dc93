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
    m_vertices.clear();
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

void ContourBuilder::appendPlaces()
{
    for (const Planar& place : m_places)
        m_vertices.push_back(vertex(place));
    m_places.clear();
}

void ContourBuilder::append(const PathShape& path)
{
    const size_t count = path.vertices.size();
    for (size_t i = 0; i < count; ++i) {
        const PathVertex& from = path.vertices[i];
        m_vertices.push_back(vertex(from.place));
        if (from.bulge == 0 || (i + 1 == count && !path.closed))
            continue;
        const Vec3 start = from.place.vec();
        const Vec3 end = path.vertices[(i + 1) % count].place.vec();
        if (start.x == end.x && start.y == end.y)
            continue;
        m_hasBulges = true;
        m_chords.appendBulge(start, end, from.bulge, m_map, m_places);
        appendPlaces();
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
    appendPlaces();
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
    appendPlaces();
    return true;
}

void ContourBuilder::appendEdge(std::vector<FlatVertex> edge)
{
    if (edge.empty())
        return;
    if (m_vertices.empty()) {
        m_vertices = std::move(edge);
        return;
    }
    const FlatVertex& last = m_vertices.back();
    if (distance(last, edge.back()) < distance(last, edge.front()))
        std::reverse(edge.begin(), edge.end());
    const bool meets = isSame(last, edge.front());
    m_vertices.insert(m_vertices.end(), edge.begin() + (meets ? 1 : 0), edge.end());
}

std::vector<FlatVertex> ContourBuilder::takeVertices()
{
    return std::exchange(m_vertices, {});
}

bool ContourBuilder::isFinite() const
{
    return std::all_of(m_vertices.begin(), m_vertices.end(), [](const FlatVertex& vertex) {
        return std::isfinite(vertex.x) && std::isfinite(vertex.y);
    });
}

} // namespace prep
