#include "outputs.h"
#include "textoutput.h"

#include <cmath>

namespace {

class DxfOutput {
public:
    DxfOutput(const QString& fileName, const QTextCodec* codec, int decimals)
        : m_lastDecimal(std::pow(10, -decimals))
        , m_out(fileName, codec)
    {
        m_out.setDecimals(decimals + 2);
        m_out << "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1015\n"
              << "  9\n$DWGCODEPAGE\n  3\nANSI_1251\n  0\nENDSEC\n"
              << "  0\nSECTION\n  2\nENTITIES\n";
    }
    ~DxfOutput() { m_out << "  0\nENDSEC\n  0\nEOF\n"; }
    DxfOutput(const DxfOutput&) = delete;
    DxfOutput& operator=(const DxfOutput&) = delete;

    void writePoint(const Vertex& point)
    {
        startEntity("POINT", "AcDbPoint", m_pointLayer);
        writePlace(point);
        m_out << " 30\n0.0\n";
    }

    void writeText(const QString& text, const Vertex& place, const QString& layer)
    {
        startEntity("TEXT", "AcDbText", layer);
        writePlace(place);
        m_out << " 30\n0.0\n 40\n2.5\n  1\n"
              << text << "\n 50\n0.0\n 41\n0.8\n 72\n0\n  7\nStandard\n100\nAcDbText\n";
    }

    void writePolyline(const Ring& ring, bool closed)
    {
        startEntity("LWPOLYLINE", "AcDbPolyline", m_objectLayer);
        const size_t count = closed ? ring.size() - 1 : ring.size();
        m_out << " 90\n" << static_cast<int>(count) << "\n 70\n" << int(closed) << "\n 43\n0.0\n";
        for (size_t i = 0; i < count; ++i)
            writePlace(ring[i]);
    }

    void writePointsWithLabels(const std::vector<Vertex>& points)
    {
        for (const Vertex& point : points)
            writePoint(point);
        int index = 0;
        for (const Vertex& point : points) {
            const Vertex label{ point.x + 30 * m_lastDecimal, point.y + 40 * m_lastDecimal };
            writeText(pointDef(index++), label, m_pointLabelLayer);
        }
    }

    void writeShapesWithLabels(const std::vector<Shape>& shapes)
    {
        for (const Shape& shape : shapes) {
            for (const Ring& ring : shape.rings)
                writePolyline(ring, shape.closed);
        }
        int index = 0;
        for (const Shape& shape : shapes)
            writeText(objectDef(index++), shape.label, m_objectLabelLayer);
    }

private:
    void startEntity(const char* type, const char* subclass, const QString& layer)
    {
        m_out << "  0\n"
              << type << "\n  5\n"
              << QString::number(m_handle++, 16).toUpper() << "\n330\n1F\n100\nAcDbEntity\n  8\n"
              << layer << "\n 62\n256\n370\n-1\n100\n"
              << subclass << "\n";
    }

    void writePlace(const Vertex& place)
    {
        m_out << " 10\n" << place.x << "\n 20\n" << place.y << "\n";
    }

    const QString m_pointLayer = QStringLiteral("Точки");
    const QString m_pointLabelLayer = QStringLiteral("Номера точек");
    const QString m_objectLayer = QStringLiteral("Участки");
    const QString m_objectLabelLayer = QStringLiteral("Обозначения участков");
    const double m_lastDecimal;
    TextOutput m_out;
    int m_handle = 0x100;
};

} // namespace

void writeDxf(const Drawing& drawing, const QString& prefix, const QTextCodec* codec)
{
    DxfOutput points(prefix + QStringLiteral("-points.dxf"), codec, drawing.decimals);
    points.writePointsWithLabels(drawing.points);

    DxfOutput objects(prefix + QStringLiteral(".dxf"), codec, drawing.decimals);
    objects.writePointsWithLabels(drawing.points);
    objects.writeShapesWithLabels(drawing.shapes);
}
