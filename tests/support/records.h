#pragma once

#include "geometry/defpolygon.h"

#include <QMetaType>
#include <QStringList>
#include <QVector>

// For columns of test data.
Q_DECLARE_METATYPE(DefPoint)

/// A coordinate as short text that stands for this very double, the sign of zero included.
QString describe(double coordinate);

/// A point as "def x y".
QString describe(const DefPoint& point);

/// An object as "def [def x y; def x y] [def x y]", with brackets around each contour.
QString describe(const DefPolygon& object);

/// The objects, one text each.
QStringList describe(const QVector<DefPolygon>& objects);

/// Objects without contours that bear the given designations.
QVector<DefPolygon> objectsNamed(const QStringList& defs);

/// The designations of objects in their order.
QStringList defsOf(const QVector<DefPolygon>& objects);

/// The lines of a UTF-8 text.
QStringList lines(const char* text);
