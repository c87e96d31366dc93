#pragma once

#include "plan/planpainter.h"

#include <QIODevice>

/// Draws the plan with the title on a picture of `size` pixels and writes it to the device. False
/// when there is no memory for such a picture; what the device reports is left to its owner.
bool writePlan(QIODevice& device, PlanFormat format, const QSize& size, PlanPainter& plan,
    const QString& title);
