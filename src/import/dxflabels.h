#pragma once

#include "geometry/nearestindex.h"
#include "geometry/sequenceindex.h"

#include <QPointF>
#include <QVector>

#include <variant>

/// The text labels of a drawing, and the search for the one that names a point or an object.
class DxfLabels {
public:
    DxfLabels() = default;
    explicit DxfLabels(const QVector<DefPoint>& texts)
        : m_texts(texts)
    {
    }

    void clear();
    /// Adds a label: a decoded text and its reference point, in the units of the file.
    void append(const DefPoint& text);
    bool isEmpty() const { return m_texts.isEmpty(); }
    /// The labels in their present order.
    const QVector<DefPoint>& texts() const { return m_texts; }

    /// Puts the labels into the order of DefPoint.
    void sort();
    /// Drops the labels that look like point numbers, unless all do.
    void filterObjectDefs();
    /// The label nearest to `place`: the one that NearestIndex gives where the labels are sorted,
    /// else that of SequenceIndex; null when there is none. The pointer holds until the labels
    /// change.
    const DefPoint* findNearest(const QPointF& place) const;

private:
    void makeIndex() const;

    QVector<DefPoint> m_texts;
    /// What is searched through, made when the first search asks for it.
    mutable std::variant<std::monostate, NearestIndex, SequenceIndex> m_index;
};
