#include "support/records.h"

#include <QLocale>

#include <cmath>

QString describe(double coordinate)
{
    if (coordinate == 0)
        return std::signbit(coordinate) ? QStringLiteral("-0") : QStringLiteral("0");
    return QString::number(coordinate, 'g', QLocale::FloatingPointShortest);
}

QString describe(const DefPoint& point)
{
    return point.def + QLatin1Char(' ') + describe(point.x) + QLatin1Char(' ') + describe(point.y);
}

QString describe(const DefPolygon& object)
{
    QString result = object.def;
    for (const QVector<DefPoint>& contour : object.contours) {
        QStringList vertices;
        for (const DefPoint& vertex : contour)
            vertices.append(describe(vertex));
        result += QStringLiteral(" [") + vertices.join(QStringLiteral("; ")) + QLatin1Char(']');
    }
    return result;
}

QStringList describe(const QVector<DefPolygon>& objects)
{
    QStringList result;
    for (const DefPolygon& object : objects)
        result.append(describe(object));
    return result;
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
