#include "import/dxfimport.h"

#include "import/dxftext.h"
#include "import/number.h"

namespace {

constexpr std::array<QLatin1String, 2> pointCodes{ QLatin1String{ "10", 2 },
    QLatin1String{ "20", 2 } };
constexpr std::array<QLatin1String, 4> lineCodes{ QLatin1String{ "10", 2 },
    QLatin1String{ "20", 2 }, QLatin1String{ "11", 2 }, QLatin1String{ "21", 2 } };

/// One coordinate of an entity, as last seen.
struct Coordinate {
    bool present = false;
    bool ok = false;
    double value = 0;

    void read(TextView text)
    {
        present = true;
        value = toDouble(text, &ok);
    }
};

} // namespace

DxfImport::~DxfImport() = default;

// Entities

template <size_t Count>
bool DxfImport::readCoordinates(
    const std::array<QLatin1String, Count>& codes, std::array<double, Count>& coordinates)
{
    std::array<bool, Count> seen{};
    size_t missing = Count;
    while (missing > 0) {
        if (pairs.atEnd() || !pairs.readCodeValue())
            return false;
        for (size_t i = 0; i < Count; ++i) {
            if (pairs.code != codes[i])
                continue;
            bool ok = false;
            coordinates[i] = toDouble(pairs.value, &ok);
            if (!ok)
                return false;
            missing -= seen[i] ? 0 : 1;
            seen[i] = true;
        }
    }
    return true;
}

bool DxfImport::readPoint()
{
    std::array<double, 2> point{};
    if (!readCoordinates(pointCodes, point))
        return false;
    points.append(DefPoint{ QString(), point[0], point[1] });
    return true;
}

bool DxfImport::readText()
{
    bool hasText = false;
    QString text;
    Coordinate x;
    Coordinate y;
    Coordinate alignedX;
    Coordinate alignedY;
    int horizontal = 0;
    int vertical = 0;
    while (!pairs.atEnd()) {
        if (!pairs.readCodeValue())
            return false;
        if (pairs.isEntity()) {
            pairs.unread = true;
            break;
        }
        if (pairs.code == QLatin1String("1")) {
            hasText = true;
            text = pairs.value.toString();
        } else if (pairs.code == QLatin1String("10")) {
            x.read(pairs.value);
        } else if (pairs.code == QLatin1String("20")) {
            y.read(pairs.value);
        } else if (pairs.code == QLatin1String("11")) {
            alignedX.read(pairs.value);
        } else if (pairs.code == QLatin1String("21")) {
            alignedY.read(pairs.value);
        } else if (pairs.code == QLatin1String("72")) {
            horizontal = toInt(pairs.value);
        } else if (pairs.code == QLatin1String("73")) {
            vertical = toInt(pairs.value);
        }
    }
    if (!hasText || !x.ok || !y.ok)
        return false;
    if ((horizontal != 0 || vertical != 0) && alignedX.present && alignedY.present) {
        if (!alignedX.ok || !alignedY.ok)
            return false;
        x = alignedX;
        y = alignedY;
    }
    labels.append(DefPoint{ decodeText(text, codec), x.value, y.value });
    return true;
}

bool DxfImport::readLine()
{
    std::array<double, 4> ends{};
    if (!readCoordinates(lineCodes, ends))
        return false;
    appendEmptyPolygon();
    appendEmptyContour();
    appendVert(ends[0], ends[1], false);
    appendVert(ends[2], ends[3], false);
    return true;
}

bool DxfImport::readVertex()
{
    std::array<double, 2> vertex{};
    if (!readCoordinates(pointCodes, vertex))
        return false;
    appendVert(vertex[0], vertex[1], false);
    return true;
}

bool DxfImport::readPolyline()
{
    appendEmptyPolygon();
    appendEmptyContour();
    while (!pairs.atEnd()) {
        if (!pairs.readCodeValue())
            return false;
        if (pairs.isEntity()) {
            if (pairs.value != QLatin1String("VERTEX"))
                return pairs.value == QLatin1String("SEQEND") && closeContour();
            if (!readVertex())
                return false;
        } else if (pairs.code == QLatin1String("70") && pairs.value == QLatin1String("1")) {
            m_closed = true;
        }
    }
    return false;
}

bool DxfImport::readLwpolyline()
{
    appendEmptyPolygon();
    appendEmptyContour();
    Coordinate x;
    Coordinate y;
    qint64 count = 0;
    bool ok = true;
    bool first = true;
    for (;;) {
        // A bad number is noticed here, one step late: after the last vertex it goes unnoticed.
        if (pairs.atEnd() || !ok || !pairs.readCodeValue() || pairs.isEntity())
            return false;
        if (pairs.code == QLatin1String("10")) {
            x.read(pairs.value);
            ok = x.ok;
        } else if (pairs.code == QLatin1String("20")) {
            y.read(pairs.value);
            ok = y.ok;
        } else if (pairs.code == QLatin1String("70")) {
            m_closed = toInt(pairs.value) & 1;
        } else if (pairs.code == QLatin1String("90")) {
            count = toInt(pairs.value, &ok);
        }
        if (!x.present || !y.present)
            continue;
        if (first && count < 2)
            return false;
        appendVert(x.value, y.value, false);
        if (count == 1)
            return closeContour();
        --count;
        first = false;
        x.present = false;
        y.present = false;
    }
}

bool DxfImport::closeContour()
{
    QVector<DefPoint>& contour = map->last().contours.last();
    if (contour.size() < 2)
        return false;
    if (m_closed && !coincide(contour.first(), contour.last()))
        contour.append(DefPoint(contour.first()));
    return true;
}

// Passes

bool DxfImport::checkDxfFile()
{
    const bool isDxf = pairs.readCodeValue() && pairs.isEntity()
        && pairs.value == QLatin1String("SECTION") && pairs.readCodeValue()
        && pairs.code == QLatin1String("2") && pairs.value == QLatin1String("HEADER");
    return isDxf || failFormat(FailureKind::NotDxf);
}

bool DxfImport::scanEntities(EntityReceiver receive)
{
    bool inEntities = false;
    bool ok = true;
    endEntity();
    while (ok && !pairs.atEnd()) {
        pairs.passOver(m_stretches);
        ok = pairs.skipToEntity();
        if (!ok || !pairs.isEntity())
            continue;
        if (pairs.value == QLatin1String("SECTION")) {
            ok = pairs.readCodeValue();
            inEntities = pairs.value == QLatin1String("ENTITIES");
        } else if (inEntities) {
            ok = (this->*receive)();
        }
    }
    pairs.keepUnread();
    return ok || fail(FailureKind::DxfEntity);
}

bool DxfImport::receivePointOrText()
{
    for (const char* type : { "POINT", "INSERT", "CIRCLE", "ELLIPSE" }) {
        const QLatin1String kind(type);
        if (pairs.value == kind)
            return readEntity(kind, &DxfImport::readPoint);
    }
    return receiveText();
}

bool DxfImport::receiveText()
{
    const QLatin1String kind("TEXT");
    return pairs.value != kind || readEntity(kind, &DxfImport::readText);
}

bool DxfImport::readEntity(QLatin1String kind, EntityReceiver read)
{
    startEntity(kind);
    if (!(this->*read)())
        return false;
    endEntity();
    observer->entityRead(kind);
    return true;
}

bool DxfImport::receivePolygon()
{
    if (pairs.value == QLatin1String("LWPOLYLINE"))
        return loadPolygon(QLatin1String("LWPOLYLINE"), &DxfImport::readLwpolyline);
    if (pairs.value == QLatin1String("LINE"))
        return loadPolygon(QLatin1String("LINE"), &DxfImport::readLine);
    if (pairs.value == QLatin1String("POLYLINE"))
        return loadPolygon(QLatin1String("POLYLINE"), &DxfImport::readPolyline);
    return true;
}

bool DxfImport::loadPolygon(QLatin1String kind, EntityReceiver read)
{
    const int objectCount = map->size();
    m_closed = false;
    startEntity(kind);
    const bool complete = (this->*read)();
    if (complete) {
        endEntity();
        updateLastPolygonDef();
    }
    if (map->size() > objectCount)
        observer->objectBuilt(kind, m_closed, complete);
    return complete;
}

bool DxfImport::loadPoints()
{
    if (!checkDxfFile())
        return false;
    labels.clear();
    m_stretches.clear();
    if (!pointFileName.isEmpty() || in.position() < 0)
        return scanEntities(&DxfImport::receivePointOrText);

    pairs.noteStretches(&m_stretches);
    const bool loaded = scanEntities(&DxfImport::receivePointOrText);
    pairs.noteStretches(nullptr);
    m_stretches.finish({ in.position(), in.lineOfFile() });
    return loaded;
}

bool DxfImport::loadPolygons()
{
    if (!checkDxfFile())
        return false;
    updatePointsDefs();
    if (searchObjectDefs) {
        const bool textsAreOfThisFile = searchPointDefs && pointFileName.isEmpty();
        if (!textsAreOfThisFile) {
            labels.clear();
            loadTextsOnly();
        }
        labels.filterObjectDefs();
    }
    if (!m_stretches.fit(in.size()))
        m_stretches.clear();
    return scanEntities(&DxfImport::receivePolygon);
}

// Labels

void DxfImport::updatePointsDefs()
{
    if (points.isEmpty() || labels.isEmpty())
        return;
    labels.sort();
    for (int i = 0; i < points.size(); ++i) {
        const DefPoint& point = points.at(i);
        if (const DefPoint* text = labels.findNearest(QPointF(point.x, point.y)))
            points.setDef(i, text->def);
    }
}

bool DxfImport::loadTextsOnly()
{
    observer->passStarted(ImportPass::Labels, in.fileName());
    const bool loaded = scanEntities(&DxfImport::receiveText);
    if (loaded) {
        labels.sort();
        resetInFileStream();
    }
    observer->passStarted(ImportPass::Objects, in.fileName());
    return loaded;
}

void DxfImport::updateLastPolygonDef()
{
    QString def;
    if (searchObjectDefs) {
        QPointF centroid = map->last().centroid();
        if (swapXY)
            centroid = centroid.transposed();
        if (const DefPoint* text = labels.findNearest(centroid))
            def = text->def;
    }
    setLastPolygonDef(def);
}

void DxfImport::pointsFromPolygons()
{
    for (const DefPolygon& polygon : qAsConst(*map)) {
        for (const QVector<DefPoint>& contour : polygon.contours) {
            for (const DefPoint& vertex : contour)
                points.append(vertex);
        }
    }
    points.arrange();
}
