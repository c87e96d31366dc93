#include "export/exportfile.h"
#include "export/measures.h"

#include <algorithm>

namespace {

/// A text as JSON has it.
QByteArray quoted(const QString& text)
{
    QByteArray json(1, '"');
    for (const char c : text.toUtf8()) {
        if (c == '"' || c == '\\')
            json += '\\';
        if (static_cast<unsigned char>(c) >= ' ')
            json += c;
        else
            json += "\\u00" + QByteArray::number(c, 16).rightJustified(2, '0');
    }
    return json + '"';
}

QByteArray position(const QPointF& place)
{
    return '[' + plainNumber(place.x()) + ',' + plainNumber(place.y()) + ']';
}

/// What JSON has no number for is null.
QByteArray measure(double value)
{
    const QByteArray text = measureText(value);
    return text.isEmpty() ? QByteArrayLiteral("null") : text;
}

class GeoJsonWriter {
public:
    explicit GeoJsonWriter(QIODevice& out)
        : m_out(out)
    {
    }

    void write(const DefPolygon& object, const ObjectShape& shape)
    {
        m_out.write(m_isFirst ? "\n" : ",\n");
        m_isFirst = false;
        m_out.write(R"({"type":"Feature","properties":{"designation":)" + quoted(object.def)
            + R"(,"area":)" + measure(shape.area) + R"(,"perimeter":)" + measure(shape.perimeter)
            + R"(},"geometry":)");
        if (shape.contours.isEmpty())
            m_out.write("null");
        else if (shape.isArea)
            writeAreas(shape);
        else
            writeLines(shape);
        m_out.write("}");
    }

private:
    void writeAreas(const ObjectShape& shape)
    {
        const bool isMultiple = shape.parts.size() > 1;
        m_out.write(isMultiple ? R"({"type":"MultiPolygon","coordinates":[)"
                               : R"({"type":"Polygon","coordinates":)");
        for (int i = 0; i < shape.parts.size(); ++i) {
            const AreaPart& part = shape.parts.at(i);
            m_out.write(i > 0 ? ",[" : "[");
            writeRing(shape.contours.at(part.outer), true);
            for (const int hole : part.holes) {
                m_out.write(",");
                writeRing(shape.contours.at(hole), false);
            }
            m_out.write("]");
        }
        m_out.write(isMultiple ? "]}" : "}");
    }

    void writeRing(Places ring, bool counterClockwise)
    {
        if ((signedTwiceArea(ring) > 0) != counterClockwise)
            std::reverse(ring.begin(), ring.end());
        ring.append(QPointF(ring.first()));
        writePlaces(ring);
    }

    void writeLines(const ObjectShape& shape)
    {
        const bool isMultiple = shape.contours.size() > 1;
        m_out.write(isMultiple ? R"({"type":"MultiLineString","coordinates":[)"
                               : R"({"type":"LineString","coordinates":)");
        for (int i = 0; i < shape.contours.size(); ++i) {
            if (i > 0)
                m_out.write(",");
            writePlaces(shape.contours.at(i));
        }
        m_out.write(isMultiple ? "]}" : "}");
    }

    void writePlaces(const Places& places)
    {
        char separator = '[';
        for (const QPointF& place : places) {
            m_out.write(separator + position(place));
            separator = ',';
        }
        m_out.write("]");
    }

    QIODevice& m_out;
    bool m_isFirst = true;
};

} // namespace

void writeGeoJson(QIODevice& out, const QVector<DefPolygon>& objects, const QVector<Shape>& shapes,
    const ExportOptions& options)
{
    out.write(R"({"type":"FeatureCollection","features":[)");
    GeoJsonWriter writer(out);
    for (int i = 0; i < objects.size(); ++i) {
        const bool isArea = shapes.value(i, Shape::Line) == Shape::Area;
        writer.write(objects.at(i), ObjectShape(objects.at(i), isArea, options.swapped));
        if (options.objectWritten)
            options.objectWritten();
    }
    out.write("\n]}\n");
}
