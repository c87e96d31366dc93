#pragma once

#include "prepare/dxfdrawing.h"
#include "prepare/prepareoptions.h"

#include <algorithm>
#include <unordered_map>

namespace prep {

/// A box that grows.
struct Bounds {
    double left = 0;
    double bottom = 0;
    double right = 0;
    double top = 0;
    bool isEmpty = true;
    bool isEndless = false; ///< of a block that holds itself

    void add(double x, double y);
    void shift(const Vec3& by);
    /// The longer side.
    double size() const { return std::max(right - left, top - bottom); }
};

/// What is known of a block that is inserted somewhere.
struct BlockState {
    Vec3 base;
    size_t entities = 0; ///< where the first of them stands
    Bounds bounds; ///< from the base on
    double largestScale = 0; ///< of the inserts in the drawing
    qint64 inserts = 0; ///< that were drawn
    bool external = false;
    bool isMeasured = false; ///< the bounds are known, or about to be
    bool holdsTexts = false;
    bool isJudged = false;
    bool isPoint = false;
};

/// Tells survey points from contours among the blocks of a drawing.
///
/// A block is a survey point if what it draws is a small mark around its insertion: its box is
/// small beside the drawing (one fiftieth) and its insertion lies in the middle of the box or in
/// the middle of one of its sides. A block that draws nothing is one, too, unless it holds texts.
/// A block that holds itself is none.
class BlockChooser {
public:
    BlockChooser(const DxfDrawing& drawing, BlockMode mode);

    /// What is known of a block; the first call reads it. Stays where it is.
    BlockState& state(const DxfBlock& block);
    bool isPoint(BlockState& block);

    /// The blocks that state() was asked for, in no order.
    const std::unordered_map<const DxfBlock*, BlockState>& states() const { return m_states; }

private:
    bool judge(BlockState& block);
    const Bounds& boundsOf(BlockState& block, int depth);
    void addEntity(Bounds& bounds, const Entity& entity, int depth);
    void addInsert(Bounds& bounds, const Entity& entity, int depth);
    double drawingSize();

    const DxfDrawing& m_drawing;
    BlockMode m_mode;
    double m_drawingSize = -1; ///< negative until it is known
    std::unordered_map<const DxfBlock*, BlockState> m_states;
};

} // namespace prep
