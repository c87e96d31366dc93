#include "outputs.h"
#include "textoutput.h"

namespace {

void writeHeader(TextOutput& mif, const QTextCodec* codec, const QString& columns)
{
    const char* charset = codec->name() == "UTF-8" ? "UTF-8" : "WindowsCyrillic";
    mif << "Version 300\nCharset \"" << charset << "\"\nDelimiter \",\"\n"
        << "CoordSys NonEarth Units \"m\" Bounds (0, 0) (10000000, 10000000)\n"
        << columns << "Data\n\n";
}

void writeRing(TextOutput& mif, const Ring& ring)
{
    for (const Vertex& vertex : ring)
        mif << vertex.x << " " << vertex.y << "\n";
}

void writeShape(TextOutput& mif, const Shape& shape)
{
    if (!shape.closed) {
        mif << "Pline " << static_cast<int>(shape.rings.front().size()) << "\n";
        writeRing(mif, shape.rings.front());
        mif << "    Pen (1,2,0)\n";
        return;
    }
    mif << "Region  " << static_cast<int>(shape.rings.size()) << "\n";
    for (const Ring& ring : shape.rings) {
        mif << "  " << static_cast<int>(ring.size()) << "\n";
        writeRing(mif, ring);
    }
    mif << "    Pen (1,2,0)\n    Brush (1,0,16777215)\n    Center " << shape.label.x << " "
        << shape.label.y << "\n";
}

void writeObjects(const Drawing& drawing, const QString& prefix, const QTextCodec* codec)
{
    TextOutput mif(prefix + QStringLiteral(".mif"), codec);
    TextOutput mid(prefix + QStringLiteral(".mid"), codec);
    mif.setDecimals(drawing.decimals);
    writeHeader(mif, codec,
        QStringLiteral("Columns 3\n  Def Char(40)\n  Category Char(40)\n  Address Char(80)\n"));
    int index = 0;
    for (const Shape& shape : drawing.shapes) {
        writeShape(mif, shape);
        mid << "\"" << objectDef(index) << "\",\"" << QStringLiteral("Земли населённых пунктов")
            << "\",\"" << QStringLiteral("ул. Садовая, д. ") << index % 200 + 1 << "\"\n";
        ++index;
    }
}

void writePoints(const Drawing& drawing, const QString& prefix, const QTextCodec* codec)
{
    TextOutput mif(prefix + QStringLiteral("-points.mif"), codec);
    TextOutput mid(prefix + QStringLiteral("-points.mid"), codec);
    mif.setDecimals(drawing.decimals);
    mid.setDecimals(drawing.decimals);
    const QString columns = QStringLiteral(
        "Columns 4\n  Def Char(20)\n  X Decimal(14,%1)\n  Y Decimal(14,%1)\n  Mark Char(40)\n");
    writeHeader(mif, codec, columns.arg(drawing.decimals));
    int index = 0;
    for (const Vertex& point : drawing.points) {
        mif << "Point " << point.x << " " << point.y << "\n    Symbol (34,0,12)\n";
        mid << "\"" << pointDef(index) << "\"," << point.x << "," << point.y << ",\""
            << QStringLiteral("временный межевой знак") << "\"\n";
        ++index;
    }
}

} // namespace

void writeMif(const Drawing& drawing, const QString& prefix, const QTextCodec* codec)
{
    writeObjects(drawing, prefix, codec);
    writePoints(drawing, prefix, codec);
}
