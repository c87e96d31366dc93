#pragma once

#include "geometry/defpolygon.h"

/// What a row of an object's coordinate catalogue shows.
struct RowInfo {
    int contourIndex; ///< -1 on a separator row
    int pointIndex; ///< -1 on a separator row
};

/// Calls `visit` with the RowInfo of each row, from the first on: a row per stored vertex, and a
/// separator between contours, empty ones included.
template <typename Visit>
void visitCatalogueRows(const DefPolygon& polygon, Visit&& visit)
{
    for (int contour = 0; contour < polygon.contours.size(); ++contour) {
        if (contour > 0)
            visit(RowInfo{ -1, -1 });
        for (int point = 0; point < polygon.contours.at(contour).size(); ++point)
            visit(RowInfo{ contour, point });
    }
}
