#pragma once

#include "geometry/defpolygon.h"

#include <QSize>
#include <QString>
#include <QVector>

class QIODevice;

/// What a plan is written as.
enum class PlanFormat { Svg, Png };

/// Draws the objects with the title on a picture of `size` pixels and writes it to the device.
/// False when there is no memory for such a picture; what the device reports is left to its owner.
bool writePlan(QIODevice& device, PlanFormat format, const QSize& size,
    const QVector<DefPolygon>& objects, const QString& title);
