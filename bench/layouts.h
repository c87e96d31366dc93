#pragma once

#include <QString>
#include <QStringList>

#include <vector>

/// A place; its coordinates have as many decimals as files of the layout give them.
struct Vertex {
    double x;
    double y;
};

using Ring = std::vector<Vertex>;

/// One object of a layout.
struct Shape {
    bool closed; ///< every ring ends with its first vertex
    std::vector<Ring> rings;
    Vertex label; ///< where the designation is written
};

/// The names that makeLayout knows.
QStringList layoutNames();

/// Objects with about `vertexCount` vertices in all, the same ones on every machine:
///  - "city": blocks of parcels that share vertices with their neighbours, some with a hole;
///  - "degrees": the city in degrees, so that many vertices stand within the tolerance;
///  - "grid": square cells on an exact grid;
///  - "column": lines along one column of equal x;
///  - "random": lines between random places, each used once;
///  - "single": one small line, and one object that has all the vertices.
/// An unknown name gives no objects.
std::vector<Shape> makeLayout(const QString& name, int vertexCount);

/// The decimals of the coordinates of a layout; 2, as surveys give them, but for degrees.
int layoutDecimals(const QString& name);

/// The distinct places of all vertices, in the order in which they are met.
std::vector<Vertex> distinctVertices(const std::vector<Shape>& shapes);

/// A designation of the kind found in land surveys, for the object or point at `index`.
QString objectDef(int index);
QString pointDef(int index);
