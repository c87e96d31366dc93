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
    /// The longer side.
    double size() const { return std::max(right - left, top - bottom); }
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

    bool isPoint(const DxfBlock& block);

private:
    bool judge(const DxfBlock& block);
    Bounds boundsOf(const DxfBlock& block, int depth);
    void addEntity(Bounds& bounds, const Entity& entity, int depth);
    void addInsert(Bounds& bounds, const Entity& entity, int depth);
    double drawingSize();

    const DxfDrawing& m_drawing;
    BlockMode m_mode;
    double m_drawingSize = -1; ///< negative until it is known
    std::unordered_map<const DxfBlock*, double> m_largestScale; ///< of inserts in the drawing
    std::unordered_map<const DxfBlock*, Bounds> m_bounds;
    std::unordered_map<const DxfBlock*, bool> m_known;
};

} // namespace prep
