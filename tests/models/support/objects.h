#pragma once

#include "geometry/defpolygon.h"
#include "support/random.h"

#include <initializer_list>
#include <limits>

/// An object of the given contours.
inline DefPolygon makeObject(const QString& def, std::initializer_list<QVector<DefPoint>> contours)
{
    return DefPolygon{ def, QVector<QVector<DefPoint>>(contours) };
}

/// Random designations, vertices and objects, chosen so that designations and places often meet.
class RandomObjects {
public:
    explicit RandomObjects(unsigned seed)
        : m_random(seed)
    {
    }

    int below(int limit) { return m_random.below(limit); }

    QString def()
    {
        static const QStringList defs = { QString(), QStringLiteral(""), QStringLiteral("1"),
            QStringLiteral("2"), QStringLiteral("a"), QStringLiteral("A"), QStringLiteral("ё7"),
            QStringLiteral("Ё7"), QStringLiteral("Straße"), QStringLiteral("STRASSE"),
            QStringLiteral("a<b>&\"c'"), QStringLiteral("\U00010400"), QStringLiteral("\U00010428"),
            QStringLiteral("İ"), QStringLiteral("i") };
        return defs.at(below(defs.size()));
    }

    double coordinate()
    {
        if (below(40) == 0)
            return std::numeric_limits<double>::quiet_NaN();
        if (below(40) == 0)
            return std::numeric_limits<double>::infinity() * (below(2) ? 1 : -1);
        return below(3) + below(5) * DefPoint::epsilon / 2;
    }

    DefPoint point() { return DefPoint{ def(), coordinate(), coordinate() }; }

    DefPolygon object()
    {
        DefPolygon object;
        object.def = def();
        object.contours.resize(below(4));
        for (QVector<DefPoint>& contour : object.contours) {
            const int size = below(6);
            for (int i = 0; i < size; ++i)
                contour.append(point());
        }
        return object;
    }

    QVector<DefPolygon> objects(int limit)
    {
        QVector<DefPolygon> result(below(limit));
        for (DefPolygon& each : result)
            each = object();
        return result;
    }

private:
    Random m_random;
};
