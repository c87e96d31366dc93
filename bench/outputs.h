#pragma once

#include "layouts.h"

#include <QString>
#include <QTextCodec>

#include <vector>

/// What a generated set of files holds.
struct Drawing {
    std::vector<Shape> shapes;
    std::vector<Vertex> points;
    int decimals = 2; ///< of the coordinates
};

/// Writes PREFIX.mif and PREFIX.mid with the objects, PREFIX-points.mif and PREFIX-points.mid with
/// the named points.
void writeMif(const Drawing& drawing, const QString& prefix, const QTextCodec* codec);

/// Writes PREFIX.dxf with points, objects and the labels of both, and PREFIX-points.dxf with the
/// points and their labels alone.
void writeDxf(const Drawing& drawing, const QString& prefix, const QTextCodec* codec);
