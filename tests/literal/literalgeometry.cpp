#include "literal/literalgeometry.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <limits>

namespace literal {

bool samePlace(const DefPoint& a, const DefPoint& b)
{
    return std::abs(a.x - b.x) <= 0.01 && std::abs(a.y - b.y) <= 0.01;
}

bool standsBefore(const DefPoint& a, const DefPoint& b)
{
    return a.x < b.x || (a.x == b.x && a.y < b.y);
}

bool isDefined(const DefPoint& point)
{
    return !std::isnan(point.x) && !std::isnan(point.y);
}

QVector<DefPoint> definedPoints(const QVector<DefPoint>& points)
{
    QVector<DefPoint> result;
    for (const DefPoint& point : points) {
        if (isDefined(point))
            result.append(point);
    }
    return result;
}

void sortPoints(QVector<DefPoint>& points)
{
    QVector<DefPoint> sorted = definedPoints(points);
    std::sort(sorted.begin(), sorted.end(), standsBefore);
    for (const DefPoint& point : qAsConst(points)) {
        if (!isDefined(point))
            sorted.append(point);
    }
    points = sorted;
}

void splitDef(const QString& def, QString& prefix, int& number)
{
    static const QRegularExpression pattern(QStringLiteral("^(.*?)(\\d+)$"));
    const QRegularExpressionMatch match = pattern.match(def);
    prefix = match.hasMatch() ? match.captured(1) : def;
    number = match.hasMatch() ? match.captured(2).toInt() : -1;
}

void sortObjects(QVector<DefPolygon>& objects)
{
    std::sort(objects.begin(), objects.end(), [](const DefPolygon& a, const DefPolygon& b) {
        QString prefixA, prefixB;
        int numberA, numberB;
        splitDef(a.def, prefixA, numberA);
        splitDef(b.def, prefixB, numberB);
        const int order = QString::compare(prefixA, prefixB, Qt::CaseInsensitive);
        return order != 0 ? order < 0 : numberA < numberB;
    });
}

int findNearestPoint(const QVector<DefPoint>& points, const QPointF& query)
{
    const int size = points.size();
    int lower = 0;
    for (int left = size; left > 0;) {
        const int half = left / 2;
        if (points[lower + half].x < query.x()) {
            lower += half + 1;
            left -= half + 1;
        } else {
            left = half;
        }
    }

    int best = -1;
    double bestD = std::numeric_limits<double>::max();
    const auto test = [&](int i) {
        const double dx = points[i].x - query.x();
        const double dy = points[i].y - query.y();
        const double d = dx * dx + dy * dy;
        if (d < bestD) {
            best = i;
            bestD = d;
        }
    };
    const auto outOfReach = [&](int i) {
        const double dx = points[i].x - query.x();
        return dx * dx > bestD;
    };

    if (lower < size)
        test(lower);
    if (lower > 0)
        test(lower - 1);
    for (int i = lower + 1; i < size && !outOfReach(i); ++i)
        test(i);
    for (int i = lower - 2; i >= 0 && !outOfReach(i); --i)
        test(i);
    return best;
}

QBitArray duplicateDefs(const QVector<DefPolygon>& objects)
{
    QBitArray result(objects.size());
    for (int row = 0; row < objects.size(); ++row) {
        const QString& def = objects[row].def;
        const auto count = std::count_if(objects.cbegin(), objects.cend(),
            [&](const DefPolygon& o) { return def.compare(o.def, Qt::CaseInsensitive) == 0; });
        result.setBit(row, !def.isEmpty() && count >= 2);
    }
    return result;
}

QBitArray conflictingPoints(const DefPolygon& polygon)
{
    QVector<DefPoint> rows;
    for (const QVector<DefPoint>& contour : polygon.contours)
        rows += contour;

    QBitArray result(rows.size());
    for (int i = 0; i < rows.size(); ++i) {
        for (int j = 0; j < rows.size(); ++j) {
            const DefPoint& p = rows[i];
            const DefPoint& q = rows[j];
            if (i == j || p.def.isEmpty() || p.def.compare(q.def, Qt::CaseInsensitive) != 0)
                continue;
            if (!samePlace(p, q))
                result.setBit(i);
        }
    }
    return result;
}

} // namespace literal
