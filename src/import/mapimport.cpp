#include "import/mapimport.h"

#include "geometry/designation.h"
#include "status.h"

#include <QDir>

MapImport::MapImport()
    : codec(QTextCodec::codecForLocale())
{
}

MapImport::~MapImport() = default;

void MapImport::setEncoding(const QByteArray& name)
{
    encoding = name;
    if (QTextCodec* found = QTextCodec::codecForName(name))
        codec = found;
}

bool MapImport::importMap()
{
    points.clear();
    if (searchPointDefs) {
        if (openFile(pointFileName.isEmpty() ? objectFileName : pointFileName)) {
            const bool loaded = loadPoints();
            closeFile();
            if (!loaded)
                return false;
        }
        points.arrange();
    }

    if (!openFile(objectFileName))
        return true;
    const bool loaded = loadPolygons();
    closeFile();
    return loaded;
}

bool MapImport::openFile(const QString& fileName)
{
    file.setFileName(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        reportFile(QStringLiteral("Ошибка открытия файла %1"), fileName);
        return false;
    }
    in.setDevice(&file);
    in.setCodec(codec);
    lineNum = 0;
    return true;
}

void MapImport::closeFile()
{
    in.setDevice(nullptr);
    file.close();
}

void MapImport::resetInFileStream()
{
    file.seek(0);
    in.seek(0);
}

void MapImport::readTextLine(QString& text)
{
    if (!in.readLineInto(&text))
        text = QString();
    ++lineNum;
}

void MapImport::appendEmptyPolygon()
{
    map->append(DefPolygon());
}

void MapImport::appendEmptyContour()
{
    map->last().contours.append(QVector<DefPoint>());
}

QString MapImport::vertexDef(double x, double y)
{
    if (const DefPoint* point = points.findCoincident(x, y))
        return point->def;
    const QString def = numberedDef(pointPref, pointStartNum++);
    points.insert(DefPoint{ def, x, y });
    return def;
}

void MapImport::appendVert(double x, double y, bool closing)
{
    QVector<DefPoint>& contour = map->last().contours.last();
    const QString def = closing ? contour.first().def : vertexDef(x, y);
    contour.append(swapXY ? DefPoint{ def, y, x } : DefPoint{ def, x, y });
}

void MapImport::setLastPolygonDef(const QString& def)
{
    map->last().def = def.isEmpty() ? numberedDef(objectPref, objectStartNum++) : def;
}

void MapImport::report(const QString& text, int number)
{
    showStatus(text.arg(number));
}

void MapImport::reportFile(const QString& text, const QString& fileName)
{
    showStatus(text.arg(QDir::toNativeSeparators(fileName)));
}
