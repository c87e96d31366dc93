#include "support/literalmapimport.h"

#include "status.h"

#include <QDir>

namespace literal {

void reportFile(const QString& text, const QString& name)
{
    showStatus(text.arg(QDir::toNativeSeparators(name)));
}

bool MapImport::importMap()
{
    catalogue.points.clear();
    if (searchPointDefs) {
        if (openFile(pointFileName.isEmpty() ? objectFileName : pointFileName)) {
            const bool loaded = loadPoints();
            file.close();
            if (!loaded)
                return false;
        }
        catalogue.arrange();
    }
    if (!openFile(objectFileName))
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

bool MapImport::openFile(const QString& name)
{
    file.setFileName(name);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        reportFile(QStringLiteral("Ошибка открытия файла %1"), name);
        return false;
    }
    in.setDevice(&file);
    in.setCodec(codec);
    lineNum = 0;
    return true;
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
