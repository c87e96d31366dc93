#pragma once

#include "geometry/defpoint.h"

#include <QVector>

#include <vector>

/// A long sequence of points kept in blocks, so that inserting in its middle moves few of them.
class PointSequence {
public:
    explicit PointSequence(const QVector<DefPoint>& points);

    int size() const { return m_size; }
    /// The point at `index`, zero-based; the reference holds until the next insertion.
    const DefPoint& at(int index) const;
    /// Inserts `point` before the one at `index`, or at the end.
    void insert(int index, const DefPoint& point);

private:
    size_t blockOf(int index) const;
    void splitBlock(size_t block);

    std::vector<std::vector<DefPoint>> m_blocks; ///< never empty
    std::vector<int> m_starts; ///< index of the first point of each block
    int m_size = 0;
};
