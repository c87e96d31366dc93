#pragma once

#include "geometry/defpolygon.h"

#include <QVector>

/// Writes the result of the objects and requires that it reads back as what they hold, if their
/// texts are of characters that XML has.
void requireReadBack(QVector<DefPolygon>& objects);
