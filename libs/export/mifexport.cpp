#include "export/exportfile.h"
#include "export/measures.h"

#include <QRectF>
#include <QTextCodec>

#include <algorithm>
#include <limits>

namespace {

/// The extent of all places, a little wider, as the header wants it.
class Bounds {
public:
    void add(const Places& places)
    {
        for (const QPointF& place : places) {
            m_least = { std::min(m_least.x(), place.x()), std::min(m_least.y(), place.y()) };
            m_most = { std::max(m_most.x(), place.x()), std::max(m_most.y(), place.y()) };
        }
    }

    QByteArray text() const
    {
        if (m_least.x() > m_most.x())
            return "(0, 0) (1, 1)";
        return corner(m_least.x() - 1, m_least.y() - 1) + ' '
            + corner(m_most.x() + 1, m_most.y() + 1);
    }

private:
    static QByteArray corner(double x, double y)
    {
        return '(' + QByteArray::number(x, 'f', 2) + ", " + QByteArray::number(y, 'f', 2) + ')';
    }

    QPointF m_least{ std::numeric_limits<double>::max(), std::numeric_limits<double>::max() };
    QPointF m_most{ std::numeric_limits<double>::lowest(), std::numeric_limits<double>::lowest() };
};

void writePlaces(QIODevice& mif, const Places& places, bool isRing)
{
    const int count = places.size() + (isRing ? 1 : 0);
    mif.write(QByteArray::number(count) + '\n');
    for (int i = 0; i < count; ++i) {
        const QPointF& place = places.at(i < places.size() ? i : 0);
        mif.write(plainNumber(place.x()) + ' ' + plainNumber(place.y()) + '\n');
    }
}

void writeShape(QIODevice& mif, const ObjectShape& shape)
{
    const int count = shape.contours.size();
    if (count == 0) {
        mif.write("None\n");
        return;
    }
    if (shape.isArea)
        mif.write("Region " + QByteArray::number(count) + "\n  ");
    else if (count > 1)
        mif.write("Pline Multiple " + QByteArray::number(count) + "\n  ");
    else
        mif.write("Pline ");
    for (int i = 0; i < count; ++i) {
        if (i > 0)
            mif.write("  ");
        writePlaces(mif, shape.contours.at(i), shape.isArea);
    }
}

} // namespace

qint64 writeMif(QIODevice& mif, QIODevice& mid, const QVector<DefPolygon>& objects,
    const QVector<Shape>& shapes, const ExportOptions& options)
{
    constexpr int longest = 254;
    const auto* const codec = QTextCodec::codecForName("Windows-1251");
    const auto shapeOf = [&](int i) {
        return ObjectShape(
            objects.at(i), shapes.value(i, Shape::Line) == Shape::Area, options.swapped);
    };
    Bounds bounds;
    for (int i = 0; i < objects.size(); ++i) {
        for (const Places& places : shapeOf(i).contours)
            bounds.add(places);
    }
    mif.write("Version 300\nCharset \"WindowsCyrillic\"\nDelimiter \",\"\n"
              "CoordSys NonEarth Units \"m\" Bounds "
        + bounds.text() + "\nColumns 3\n"
        + codec->fromUnicode(QStringLiteral("  Обозначение Char(254)\n  Площадь Float\n"
                                            "  Периметр Float\n"))
        + "Data\n\n");
    qint64 unknown = 0;
    for (int i = 0; i < objects.size(); ++i) {
        const ObjectShape shape = shapeOf(i);
        writeShape(mif, shape);
        // A row is a line.
        QString def = objects.at(i).def.left(longest);
        def.replace(QLatin1Char('\n'), QLatin1Char(' ')).remove(QLatin1Char('\r'));
        unknown += codec->canEncode(def) ? 0 : 1;
        mid.write('"' + codec->fromUnicode(def).replace('"', "\"\"") + "\","
            + measureText(shape.area) + ',' + measureText(shape.perimeter) + '\n');
        if (options.objectWritten)
            options.objectWritten();
    }
    return unknown;
}
