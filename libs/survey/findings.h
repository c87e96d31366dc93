#pragma once

#include "importrun/importrun.h"

#include <QPointF>
#include <QVector>

#include <limits>
#include <optional>

/// The first findings of a kind, and the number of all.
template <typename Finding>
struct Findings {
    QVector<Finding> listed;
    qint64 total = 0;

    qint64 unlisted() const { return total - listed.size(); }
};

/// So many findings of a kind, and places of one, are listed unless all are asked for.
constexpr int listedFindings = 10;
constexpr int allFindings = std::numeric_limits<int>::max();

/// An object that something was found about.
struct ObjectName {
    int object; ///< zero-based
    QString def; ///< cut where it is long
};

/// Points of one object that bear one designation at different places.
struct PointConflict {
    ObjectName object;
    QString def;
    Findings<QPointF> places;
};

/// Objects that bear one designation.
struct DuplicateDef {
    QString def;
    Findings<int> objects; ///< zero-based
};

/// An object without contours, or a contour with fewer different vertices than its kind needs.
struct IncompleteObject {
    ObjectName object;
    int contour; ///< zero-based; -1 for an object without contours
    int vertices;
    int needed;
};

// Each lists at most so many findings.

/// In two threads where there are many objects, unless `inOneThread`.
Findings<PointConflict> findPointConflicts(
    const QVector<DefPolygon>& objects, int most, bool inOneThread = false);
Findings<DuplicateDef> findDuplicateDefs(const QVector<DefPolygon>& objects, int most);
/// `shapes` are those of the objects.
Findings<IncompleteObject> findIncompleteObjects(
    const QVector<DefPolygon>& objects, const QVector<Shape>& shapes, int most);

/// `def` cut to a length that a report has room for.
QString shortened(const QString& def);

/// Which of a vertex's coordinates runs to the east.
enum class AxisOrder { Unknown, EastingFirst, NorthingFirst };

/// Tells the axes by the sizes of the coordinates, when nine of ten vertices agree.
///
/// In the plane systems of land surveying an easting bears the number of its zone before six
/// digits, a northing does not: eastings of 1 to 4 million stand beside northings of 100 thousand
/// to a million in the local systems, eastings of 10 to 33 million beside northings of 4 to 10
/// million in the national one. Six digits that stand before 4 to 10 million are an easting
/// without its zone; in the other order they may as well be a northing of a local system.
AxisOrder guessAxisOrder(const QVector<DefPolygon>& objects);

/// The middle of coordinates that look like degrees of longitude and latitude, in this order; none
/// for others. Nine of ten objects must be a thousandth as large as the Earth, or smaller, and lie
/// between 1 and 180, or 90, degrees.
std::optional<QPointF> guessDegrees(const QVector<DefPolygon>& objects);
