#include "support/records.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

bool sameNumber(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

bool sameDefs(const QString& a, const QString& b)
{
    return a == b && a.isNull() == b.isNull();
}

bool sameContours(const QVector<DefPoint>& a, const QVector<DefPoint>& b)
{
    return std::equal(
        a.begin(), a.end(), b.begin(), b.end(), [](const DefPoint& p, const DefPoint& q) {
            return sameDefs(p.def, q.def) && sameNumber(p.x, q.x) && sameNumber(p.y, q.y);
        });
}

} // namespace

QString describe(const QString& def)
{
    return def.isNull() ? QStringLiteral("<null>") : def;
}

QString describe(double coordinate)
{
    if (coordinate == 0)
        return std::signbit(coordinate) ? QStringLiteral("-0") : QStringLiteral("0");
    return QString::number(coordinate, 'g', QLocale::FloatingPointShortest);
}

QString describe(const DefPoint& point)
{
    return describe(point.def) + QLatin1Char(' ') + describe(point.x) + QLatin1Char(' ')
        + describe(point.y);
}

QString describe(const DefPolygon& object)
{
    QString result = describe(object.def);
    for (const QVector<DefPoint>& contour : object.contours)
        result += QStringLiteral(" [") + describeAll(contour) + QLatin1Char(']');
    return result;
}

bool sameObjects(const QVector<DefPolygon>& a, const QVector<DefPolygon>& b)
{
    return std::equal(
        a.begin(), a.end(), b.begin(), b.end(), [](const DefPolygon& p, const DefPolygon& q) {
            return sameDefs(p.def, q.def)
                && std::equal(p.contours.begin(), p.contours.end(), q.contours.begin(),
                    q.contours.end(), sameContours);
        });
}

QVector<DefPolygon> objectsNamed(const QStringList& defs)
{
    QVector<DefPolygon> objects;
    for (const QString& def : defs)
        objects.append(DefPolygon{ def, {} });
    return objects;
}

QStringList defsOf(const QVector<DefPolygon>& objects)
{
    QStringList defs;
    for (const DefPolygon& object : objects)
        defs.append(object.def);
    return defs;
}

QStringList lines(const char* text)
{
    return QString::fromUtf8(text).split(QLatin1Char('\n'));
}
