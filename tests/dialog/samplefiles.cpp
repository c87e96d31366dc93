#include "samplefiles.h"

#include "support/miftext.h"
#include "support/tempfiles.h"

void writeMif(const QString& path, const QByteArray& objects, const QByteArray& rows)
{
    writeFile(path + QStringLiteral(".mif"), mif("\n" + objects));
    writeFile(path + QStringLiteral(".mid"), rows);
}

static QByteArray place(const QByteArray& x, const QByteArray& y)
{
    return "10\n" + x + "\n20\n" + y + "\n";
}

static QByteArray label(const QByteArray& text, const QByteArray& x, const QByteArray& y)
{
    return "0\nTEXT\n" + place(x, y) + "1\n" + text + "\n72\n0\n";
}

QByteArray squareDxf(bool withPoints)
{
    QByteArray points;
    if (withPoints)
        points = "0\nPOINT\n" + place("0", "0") + "0\nPOINT\n" + place("100", "0") + "0\nPOINT\n"
            + place("100", "100") + "0\nPOINT\n" + place("0", "100");
    return "0\nSECTION\n2\nHEADER\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n" + points
        + label("1", "0.2", "0.3") + label("2", "100.1", "0.2") + label("3", "100.2", "100.1")
        + label("4", "0.1", "100.3") + label(QStringLiteral("ЗУ1").toUtf8(), "50", "50")
        + "0\nLWPOLYLINE\n90\n4\n70\n1\n" + place("0", "0") + place("100", "0")
        + place("100", "100") + place("0", "100") + "0\nENDSEC\n0\nEOF\n";
}
