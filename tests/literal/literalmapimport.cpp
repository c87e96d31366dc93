#include "literal/literalmapimport.h"

#include "status.h"

#include <QDir>

namespace literal {

void reportFile(const QString& text, const QString& name)
{
    showStatus(text.arg(QDir::toNativeSeparators(name)));
}

bool MapImport::importMap()
{
    catalogue = Catalogue();
    if (searchPointDefs) {
        if (openPass(pointFileName.isEmpty() ? objectFileName : pointFileName)) {
            const bool loaded = loadPoints();
            file.close();
            if (!loaded)
                return false;
        }
        catalogue.arrange();
    }
    if (!openPass(objectFileName))
        return true;
    const bool loaded = loadPolygons();
    file.close();
    return loaded;
}

void MapImport::setEncoding(const QByteArray& name)
{
    if (QTextCodec* found = QTextCodec::codecForName(name))
        codec = found;
}

bool MapImport::open(
    QFile& from, QTextStream& stream, const QString& name, const QString& error) const
{
    from.setFileName(name);
    if (!from.open(QIODevice::ReadOnly | QIODevice::Text)) {
        reportFile(error, name);
        return false;
    }
    stream.setDevice(&from);
    stream.setCodec(codec);
    return true;
}

bool MapImport::openPass(const QString& name)
{
    lineNum = 0;
    return open(file, in, name, QStringLiteral("Ошибка открытия файла %1"));
}

void MapImport::appendVert(double x, double y, bool closing)
{
    QString def;
    if (closing) {
        def = lastContour().first().def;
    } else if (const int found = catalogue.findCoincident(x, y); found >= 0) {
        def = catalogue.points[found].def;
    } else {
        def = pointPref + QString::number(pointStartNum++);
        catalogue.insert(DefPoint{ def, x, y });
    }
    if (swapXY)
        std::swap(x, y);
    lastContour().append(DefPoint{ def, x, y });
}

void MapImport::setLastPolygonDef(QString def)
{
    if (def.isEmpty())
        def = objectPref + QString::number(objectStartNum++);
    map->last().def = def;
}

} // namespace literal
