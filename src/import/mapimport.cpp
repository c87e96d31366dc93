#include "import/mapimport.h"

#include "geometry/designation.h"
#include "status.h"

#include <QDir>

#include <utility>

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
            in.close();
            if (!loaded)
                return false;
        }
        points.arrange();
    }

    if (!openFile(objectFileName))
        return true;
    const bool loaded = loadPolygons();
    in.close();
    return loaded;
}

bool MapImport::openFile(const QString& fileName)
{
    const bool opened = in.open(fileName, codec);
    if (!opened)
        reportFile(QStringLiteral("Ошибка открытия файла %1"), fileName);
    return opened;
}

void MapImport::resetInFileStream()
{
    in.rewind();
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
    QString def = numberedDef(pointPref, pointStartNum++);
    points.insert(DefPoint{ def, x, y });
    return def;
}

void MapImport::appendVert(double x, double y, bool closing)
{
    QVector<DefPoint>& contour = map->last().contours.last();
    DefPoint vertex{ closing ? contour.first().def : vertexDef(x, y), x, y };
    if (swapXY)
        std::swap(vertex.x, vertex.y);
    contour.append(std::move(vertex));
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
