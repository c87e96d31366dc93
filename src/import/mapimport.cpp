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
    m_namer.start();
    m_objects = 0;
    m_toldNamed = 0;
    try {
        loaded = loadPolygons();
        finishNames();
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
    endObject();
    map->append(DefPolygon());
    ++m_objects;
    m_isInObject = true;
}

void MapImport::appendEmptyContour()
{
    endContour();
    map->last().contours.append(QVector<DefPoint>());
    m_contour = &map->last().contours.last();
    m_isClosed = false;
}

void MapImport::appendVert(double x, double y, bool closing)
{
    if (swapXY)
        std::swap(x, y);
    m_contour->append(DefPoint{ QString(), x, y });
    m_isClosed = closing;
}

void MapImport::endContour()
{
    if (!m_contour)
        return;
    m_namer.add(m_contour->data(), m_contour->size(), m_isClosed);
    m_contour = nullptr;
}

void MapImport::endObject()
{
    if (!m_isInObject)
        return;
    endContour();
    // Before this object can be among them: of one that was broken off the observer is not told.
    tellNamed();
    m_namer.endObject();
    m_isInObject = false;
}

void MapImport::finishNames()
{
    endObject();
    m_namer.finish();
    tellNamed();
}

void MapImport::tellNamed()
{
    const int named = m_namer.namedObjects();
    if (named != std::exchange(m_toldNamed, named))
        observer->objectsNamed(named);
}

/// Names what was built before something went wrong, if that can be done; objects that memory does
/// not suffice to name are dropped.
void MapImport::dropUnnamed()
{
    try {
        finishNames();
    } catch (...) {
        m_namer.abandon();
        const int unnamed = m_objects - m_namer.namedObjects();
        map->resize(std::max(0, map->size() - unnamed));
    }
    m_isInObject = false;
    m_contour = nullptr;
    tellNamed();
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
