#pragma once

#include "plan/planlabels.h"

#include <QPolygonF>

/// Adds the designation of an object for each of its parts, at a place inside; `contours` lie in
/// the picture and enclose areas or are lines. There must be one, and none may be empty.
void addObjectLabels(QVector<PlanLabel>& labels, const QString& def,
    const QVector<QPolygonF>& contours, bool isArea, bool isRed);
