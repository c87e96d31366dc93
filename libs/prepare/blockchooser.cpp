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
constexpr int mostMeasuredDepth = 16;

void addPlace(Bounds& bounds, const Place& place)
{
    bounds.add(place.x.value, place.y.value);
}

void addPath(Bounds& bounds, const PathShape& path)
{
    for (size_t i = 0; i < path.vertices.size(); ++i)
        addPlace(bounds, path.vertices.place(i));
}

void addConic(Bounds& bounds, const ConicShape& conic)
{
    const double x = std::hypot(conic.first.x, conic.second.x);
    const double y = std::hypot(conic.first.y, conic.second.y);
    bounds.add(conic.centre.x.value - x, conic.centre.y.value - y);
    bounds.add(conic.centre.x.value + x, conic.centre.y.value + y);
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

void Bounds::shift(const Vec3& by)
{
    left += by.x;
    right += by.x;
    bottom += by.y;
    top += by.y;
}

BlockChooser::BlockChooser(const DxfDrawing& drawing, BlockMode mode)
    : m_drawing(drawing)
    , m_mode(mode)
{
}

BlockState& BlockChooser::state(const DxfBlock& block)
{
    const auto known = m_states.find(&block);
    if (known != m_states.end())
        return known->second;
    const DxfBlockHead head = m_drawing.head(block);
    BlockState& state = m_states[&block];
    state.base = head.base;
    state.external = head.external;
    state.entities = head.entities;
    return state;
}

bool BlockChooser::isPoint(BlockState& block)
{
    if (m_mode != BlockMode::Auto)
        return m_mode == BlockMode::Points;
    if (!block.isJudged)
        block.isPoint = judge(block);
    block.isJudged = true;
    return block.isPoint;
}

bool BlockChooser::judge(BlockState& block)
{
    const Bounds& bounds = boundsOf(block, 0);
    if (bounds.isEndless)
        return false;
    if (bounds.isEmpty)
        return !block.holdsTexts;
    const double offset =
        std::hypot((bounds.left + bounds.right) / 2, (bounds.bottom + bounds.top) / 2);
    if (offset > bounds.size() * centreShare)
        return false;
    const double wholeSize = drawingSize();
    const double factor = block.largestScale > 0 ? block.largestScale : 1;
    return bounds.size() * factor <= wholeSize * markShare;
}

const Bounds& BlockChooser::boundsOf(BlockState& block, int depth)
{
    if (block.isMeasured)
        return block.bounds;
    // While it is looked at, a block that is met again holds itself.
    block.isMeasured = true;
    block.bounds.isEndless = true;
    Bounds bounds;
    Entity entity;
    m_drawing.forEachOfBlock(block.entities, [&](DxfRecords& records) {
        if (!readEntity(records, entity)) {
            block.holdsTexts = block.holdsTexts || std::holds_alternative<LabelShape>(entity.shape);
            addEntity(bounds, entity, depth);
        }
        return true;
    });
    bounds.shift(block.base * -1);
    block.bounds = bounds;
    return block.bounds;
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
    const Bounds inner =
        block && depth < mostMeasuredDepth ? boundsOf(state(*block), depth + 1) : Bounds();
    const double x = insert.place.x.value;
    const double y = insert.place.y.value;
    bounds.add(x, y);
    bounds.isEndless = bounds.isEndless || inner.isEndless;
    if (inner.isEmpty)
        return;
    if (insert.rotation == 0 && insert.scale.x > 0 && insert.scale.y > 0) {
        bounds.add(x + inner.left * insert.scale.x, y + inner.bottom * insert.scale.y);
        bounds.add(x + inner.right * insert.scale.x, y + inner.top * insert.scale.y);
        return;
    }
    const double factor = std::max(std::abs(insert.scale.x), std::abs(insert.scale.y));
    const double reach = factor * std::max({ inner.right, -inner.left, inner.top, -inner.bottom });
    bounds.add(x - reach, y - reach);
    bounds.add(x + reach, y + reach);
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
            double& largest = state(*block).largestScale;
            largest = std::max({ largest, std::abs(insert->scale.x), std::abs(insert->scale.y) });
        }
    });
    m_drawingSize = bounds.isEmpty ? 0 : bounds.size();
    return m_drawingSize;
}

} // namespace prep
