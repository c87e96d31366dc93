#include "import/dxfimport.h"

#include "import/dxftext.h"
#include "import/number.h"

namespace {

constexpr std::array<QLatin1String, 2> pointCodes{ QLatin1String{ "10", 2 },
    QLatin1String{ "20", 2 } };
constexpr std::array<QLatin1String, 4> lineCodes{ QLatin1String{ "10", 2 },
    QLatin1String{ "20", 2 }, QLatin1String{ "11", 2 }, QLatin1String{ "21", 2 } };
constexpr DxfCodes textCodes{ std::array<QLatin1String, 7>{ QLatin1String{ "1", 1 },
    QLatin1String{ "10", 2 }, QLatin1String{ "20", 2 }, QLatin1String{ "11", 2 },
    QLatin1String{ "21", 2 }, QLatin1String{ "72", 2 }, QLatin1String{ "73", 2 } } };
constexpr DxfCodes polylineCodes{ std::array<QLatin1String, 1>{ QLatin1String{ "70", 2 } } };
constexpr DxfCodes lwpolylineCodes{ std::array<QLatin1String, 4>{ QLatin1String{ "10", 2 },
    QLatin1String{ "20", 2 }, QLatin1String{ "70", 2 }, QLatin1String{ "90", 2 } } };

/// One coordinate of an entity, as last seen.
struct Coordinate {
    bool present = false;
    bool ok = false;
    double value = 0;

    void read(TextView text)
    {
        present = true;
        value = toDouble(text, &ok);
    }
};

} // namespace

template <size_t Count>
bool DxfImport::readCoordinates(
    const std::array<QLatin1String, Count>& codes, std::array<double, Count>& coordinates)
{
    pairs.skipOthers(DxfCodes(codes));
    std::array<bool, Count> seen{};
    size_t missing = Count;
    while (missing > 0) {
        if (pairs.atEnd() || !pairs.readCodeValue())
            return false;
        for (size_t i = 0; i < Count; ++i) {
            if (pairs.code != codes[i])
                continue;
            bool ok = false;
            coordinates[i] = toDouble(pairs.value, &ok);
            if (!ok)
                return false;
            missing -= seen[i] ? 0 : 1;
            seen[i] = true;
        }
    }
    return true;
}

bool DxfImport::readPoint()
{
    std::array<double, 2> point{};
    if (!readCoordinates(pointCodes, point))
        return false;
    points.append(DefPoint{ QString(), point[0], point[1] });
    return true;
}

bool DxfImport::readText()
{
    bool hasText = false;
    QString text;
    Coordinate x;
    Coordinate y;
    Coordinate alignedX;
    Coordinate alignedY;
    int horizontal = 0;
    int vertical = 0;
    pairs.skipOthers(textCodes);
    while (!pairs.atEnd()) {
        if (!pairs.readCodeValue())
            return false;
        if (pairs.isEntity()) {
            pairs.unread = true;
            break;
        }
        if (pairs.code == QLatin1String("1")) {
            hasText = true;
            text = pairs.value.toString();
        } else if (pairs.code == QLatin1String("10")) {
            x.read(pairs.value);
        } else if (pairs.code == QLatin1String("20")) {
            y.read(pairs.value);
        } else if (pairs.code == QLatin1String("11")) {
            alignedX.read(pairs.value);
        } else if (pairs.code == QLatin1String("21")) {
            alignedY.read(pairs.value);
        } else if (pairs.code == QLatin1String("72")) {
            horizontal = toInt(pairs.value);
        } else if (pairs.code == QLatin1String("73")) {
            vertical = toInt(pairs.value);
        }
    }
    if (!hasText || !x.ok || !y.ok)
        return false;
    if ((horizontal != 0 || vertical != 0) && alignedX.present && alignedY.present) {
        if (!alignedX.ok || !alignedY.ok)
            return false;
        x = alignedX;
        y = alignedY;
    }
    labels.append(DefPoint{ decodeText(text, codec), x.value, y.value });
    return true;
}

bool DxfImport::readLine()
{
    std::array<double, 4> ends{};
    if (!readCoordinates(lineCodes, ends))
        return false;
    appendEmptyPolygon();
    appendEmptyContour();
    appendVert(ends[0], ends[1], false);
    appendVert(ends[2], ends[3], false);
    return true;
}

bool DxfImport::readVertex()
{
    std::array<double, 2> vertex{};
    if (!readCoordinates(pointCodes, vertex))
        return false;
    appendVert(vertex[0], vertex[1], false);
    return true;
}

bool DxfImport::readPolyline()
{
    appendEmptyPolygon();
    appendEmptyContour();
    pairs.skipOthers(polylineCodes);
    while (!pairs.atEnd()) {
        if (!pairs.readCodeValue())
            return false;
        if (pairs.isEntity()) {
            if (pairs.value != QLatin1String("VERTEX"))
                return pairs.value == QLatin1String("SEQEND") && closeContour();
            if (!readVertex())
                return false;
        } else if (pairs.code == QLatin1String("70") && pairs.value == QLatin1String("1")) {
            m_closed = true;
        }
    }
    return false;
}

bool DxfImport::readLwpolyline()
{
    appendEmptyPolygon();
    appendEmptyContour();
    Coordinate x;
    Coordinate y;
    qint64 count = 0;
    bool ok = true;
    bool first = true;
    pairs.skipOthers(lwpolylineCodes);
    for (;;) {
        // A bad number is noticed here, one step late: after the last vertex it goes unnoticed.
        if (pairs.atEnd() || !ok || !pairs.readCodeValue() || pairs.isEntity())
            return false;
        if (pairs.code == QLatin1String("10")) {
            x.read(pairs.value);
            ok = x.ok;
        } else if (pairs.code == QLatin1String("20")) {
            y.read(pairs.value);
            ok = y.ok;
        } else if (pairs.code == QLatin1String("70")) {
            m_closed = toInt(pairs.value) & 1;
        } else if (pairs.code == QLatin1String("90")) {
            count = toInt(pairs.value, &ok);
        }
        if (!x.present || !y.present)
            continue;
        if (first && count < 2)
            return false;
        appendVert(x.value, y.value, false);
        if (count == 1)
            return closeContour();
        --count;
        first = false;
        x.present = false;
        y.present = false;
    }
}

bool DxfImport::closeContour()
{
    const QVector<DefPoint>& contour = map->last().contours.last();
    if (contour.size() < 2)
        return false;
    const DefPoint first = contour.first();
    if (m_closed && !coincide(first, contour.last()))
        appendVert(swapXY ? first.y : first.x, swapXY ? first.x : first.y, true);
    return true;
}
