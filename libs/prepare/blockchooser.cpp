#include "prepare/blockchooser.h"

#include "prepare/dxfentityreader.h"

#include <cmath>

namespace prep {

namespace {

/// A mark is smaller than this part of the drawing.
constexpr double markShare = 0.02;
/// How far from the middle of a mark its insertion may lie, as a part of its size.
constexpr double centreShare = 0.505;
/// Deeper nesting adds nothing to the judgement.
constexpr int mostDepth = 16;

void addPlace(Bounds& bounds, const Place& place)
{
    bounds.add(place.x.value, place.y.value);
}

void addPath(Bounds& bounds, const PathShape& path)
{
    for (const PathVertex& vertex : path.vertices)
        addPlace(bounds, vertex.place);
}

void addConic(Bounds& bounds, const ConicShape& conic)
{
    const double x = std::hypot(conic.first.x, conic.second.x);
    const double y = std::hypot(conic.first.y, conic.second.y);
    bounds.add(conic.centre.x.value - x, conic.centre.y.value - y);
    bounds.add(conic.centre.x.value + x, conic.centre.y.value + y);
}

bool holdsTexts(const DxfBlock& block)
{
    return std::any_of(block.entities.begin(), block.entities.end(),
        [](const Entity& entity) { return std::holds_alternative<LabelShape>(entity.shape); });
}

} // namespace

void Bounds::add(double x, double y)
{
    left = isEmpty ? x : std::min(left, x);
    right = isEmpty ? x : std::max(right, x);
    bottom = isEmpty ? y : std::min(bottom, y);
    top = isEmpty ? y : std::max(top, y);
    isEmpty = false;
}

BlockChooser::BlockChooser(const DxfDrawing& drawing, BlockMode mode)
    : m_drawing(drawing)
    , m_mode(mode)
{
}

bool BlockChooser::isPoint(const DxfBlock& block)
{
    if (m_mode != BlockMode::Auto)
        return m_mode == BlockMode::Points;
    const auto known = m_known.find(&block);
    if (known != m_known.end())
        return known->second;
    const bool isPoint = judge(block);
    m_known.emplace(&block, isPoint);
    return isPoint;
}

bool BlockChooser::judge(const DxfBlock& block)
{
    const Bounds bounds = boundsOf(block, 0);
    if (bounds.isEndless)
        return false;
    if (bounds.isEmpty)
        return !holdsTexts(block);
    const double offset = std::hypot((bounds.left + bounds.right) / 2 - block.base.x,
        (bounds.bottom + bounds.top) / 2 - block.base.y);
    if (offset > bounds.size() * centreShare)
        return false;
    const double wholeSize = drawingSize();
    const auto scale = m_largestScale.find(&block);
    const double factor = scale == m_largestScale.end() ? 1 : scale->second;
    return bounds.size() * factor <= wholeSize * markShare;
}

Bounds BlockChooser::boundsOf(const DxfBlock& block, int depth)
{
    const auto known = m_bounds.find(&block);
    if (known != m_bounds.end())
        return known->second;
    Bounds bounds;
    // While it is looked at, a block that is met again holds itself.
    bounds.isEndless = true;
    m_bounds.emplace(&block, bounds);
    bounds.isEndless = false;
    for (const Entity& entity : block.entities)
        addEntity(bounds, entity, depth);
    m_bounds[&block] = bounds;
    return bounds;
}

void BlockChooser::addEntity(Bounds& bounds, const Entity& entity, int depth)
{
    if (const auto* point = std::get_if<PointShape>(&entity.shape)) {
        addPlace(bounds, point->place);
    } else if (const auto* path = std::get_if<PathShape>(&entity.shape)) {
        addPath(bounds, *path);
    } else if (const auto* conic = std::get_if<ConicShape>(&entity.shape)) {
        addConic(bounds, *conic);
    } else if (const auto* spline = std::get_if<SplineShape>(&entity.shape)) {
        for (const Vec3& control : spline->controls.empty() ? spline->fits : spline->controls)
            bounds.add(control.x, control.y);
    } else if (std::holds_alternative<InsertShape>(entity.shape)) {
        addInsert(bounds, entity, depth);
    }
}

void BlockChooser::addInsert(Bounds& bounds, const Entity& entity, int depth)
{
    const auto& insert = std::get<InsertShape>(entity.shape);
    const DxfBlock* const block = m_drawing.block(insert.block);
    const Bounds inner = block && depth < mostDepth ? boundsOf(*block, depth + 1) : Bounds();
    const double x = insert.place.x.value;
    const double y = insert.place.y.value;
    bounds.add(x, y);
    bounds.isEndless = bounds.isEndless || inner.isEndless;
    if (inner.isEmpty)
        return;
    const double factor = std::max(std::abs(insert.scale.x), std::abs(insert.scale.y));
    const double reach = factor
        * std::max({ inner.right - block->base.x, block->base.x - inner.left,
            inner.top - block->base.y, block->base.y - inner.bottom });
    if (insert.rotation == 0 && insert.scale.x > 0 && insert.scale.y > 0) {
        bounds.add(x + (inner.left - block->base.x) * insert.scale.x,
            y + (inner.bottom - block->base.y) * insert.scale.y);
        bounds.add(x + (inner.right - block->base.x) * insert.scale.x,
            y + (inner.top - block->base.y) * insert.scale.y);
    } else {
        bounds.add(x - reach, y - reach);
        bounds.add(x + reach, y + reach);
    }
}

double BlockChooser::drawingSize()
{
    if (m_drawingSize >= 0)
        return m_drawingSize;
    Bounds bounds;
    Entity entity;
    m_drawing.forEachEntity([&](DxfRecords& records) {
        if (readEntity(records, entity))
            return;
        addEntity(bounds, entity, 0);
        const auto* const insert = std::get_if<InsertShape>(&entity.shape);
        const DxfBlock* const block = insert ? m_drawing.block(insert->block) : nullptr;
        if (block) {
            double& largest = m_largestScale[block];
            largest = std::max({ largest, std::abs(insert->scale.x), std::abs(insert->scale.y) });
        }
    });
    m_drawingSize = bounds.isEmpty ? 0 : bounds.size();
    return m_drawingSize;
}

} // namespace prep
