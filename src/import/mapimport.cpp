#include "import/mapimport.h"

#include "geometry/designation.h"

#include <algorithm>
#include <utility>

namespace {

/// A vertex takes so many bytes and more, as a rule; in a drawing far more.
constexpr qint64 bytesPerPoint = 8;
/// Room for more points than this is made as they come.
constexpr qint64 mostRoom = 1 << 22;

/// The observer of imports that were given no other.
ImportObserver messagesOnly;

} // namespace

MapImport::MapImport()
    : observer(&messagesOnly)
    , codec(QTextCodec::codecForLocale())
{
}

MapImport::~MapImport() = default;

void MapImport::setOptions(const ImportOptions& options)
{
    ImportOptions::operator=(options);
    setEncoding(options.encoding);
}

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
        if (openFile(
                ImportPass::Points, pointFileName.isEmpty() ? objectFileName : pointFileName)) {
            const bool loaded = loadPoints();
            in.close();
            if (!loaded)
                return false;
        }
        points.arrange();
    }

    if (!openFile(ImportPass::Objects, objectFileName))
        return true;
    bool loaded = false;
    try {
        loaded = loadPolygons();
        nameVertices();
    } catch (...) {
        dropUnnamed();
        throw;
    }
    in.close();
    return loaded;
}

bool MapImport::openFile(ImportPass pass, const QString& fileName)
{
    observer->passStarted(pass, fileName);
    if (!in.open(fileName, codec))
        return failFile(FailureKind::FileNotOpened, fileName);
    // Pages that are not written to are only promised; points that outgrow theirs are moved, and
    // take twice as much meanwhile.
    if (points.isEmpty())
        points.makeRoom(static_cast<int>(std::min(in.size() / bytesPerPoint, mostRoom)));
    return true;
}

void MapImport::resetInFileStream()
{
    in.rewind();
}

void MapImport::appendEmptyPolygon()
{
    nameVertices();
    map->append(DefPolygon());
}

void MapImport::appendEmptyContour()
{
    nameVertices();
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
    if (closing)
        nameVertices();
    DefPoint vertex{ closing ? contour.first().def : QString(), x, y };
    if (swapXY)
        std::swap(vertex.x, vertex.y);
    contour.append(std::move(vertex));
    if (closing)
        return;
    m_expected[m_unnamed++] = points.expect(x, y);
    if (m_unnamed == m_expected.size())
        nameVertices();
}

void MapImport::nameVertices()
{
    if (m_unnamed == 0)
        return;
    DefPoint* const end = map->last().contours.last().end();
    DefPoint* const begin = end - m_unnamed;
    points.expectPoints(m_expected.data(), m_unnamed);
    for (DefPoint* vertex = begin; vertex != end; ++vertex) {
        vertex->def = swapXY ? vertexDef(vertex->y, vertex->x) : vertexDef(vertex->x, vertex->y);
        --m_unnamed;
    }
}

/// What memory did not suffice to name is no part of the objects.
void MapImport::dropUnnamed()
{
    if (m_unnamed == 0)
        return;
    QVector<DefPoint>& contour = map->last().contours.last();
    contour.resize(contour.size() - static_cast<int>(std::exchange(m_unnamed, 0)));
}

void MapImport::setLastPolygonDef(const QString& def)
{
    map->last().def = def.isEmpty() ? numberedDef(objectPref, objectStartNum++) : def;
}

void MapImport::startEntity(QLatin1String kind)
{
    m_entity = kind;
    m_entityLine = in.lineOfFile();
}

bool MapImport::fail(FailureKind kind)
{
    observer->failed(
        { kind, in.fileName(), in.lineNum(), in.lineOfFile(), m_entity, m_entityLine });
    return false;
}

bool MapImport::failFormat(FailureKind kind)
{
    observer->failed({ kind, in.fileName(), 0, in.lineOfFile() });
    return false;
}

bool MapImport::failFile(FailureKind kind, const QString& fileName)
{
    observer->failed({ kind, fileName });
    return false;
}
