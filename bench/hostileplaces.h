#pragma once

#include "geometry/defpoint.h"

#include <QPointF>
#include <QVector>

/// Places that a search finds hard, or would if it were simpler, and harmless ones of their number.
struct HostilePlaces {
    const char* name;
    /// Makes `count` of them.
    QVector<DefPoint> (*make)(int count);
};

/// For a catalogue that gets them one by one.
QVector<HostilePlaces> hostileInserted();
/// For a catalogue that gets them to arrange.
QVector<HostilePlaces> hostileArranged();

/// Labels and the places whose nearest label is asked for.
struct HostileLabels {
    const char* name;
    QVector<DefPoint> (*make)(int count);
    /// The query of a number.
    QPointF (*query)(int index);
};

/// For labels that are sorted.
QVector<HostileLabels> hostileSorted();
/// For labels in the order of a file.
QVector<HostileLabels> hostileUnsorted();
