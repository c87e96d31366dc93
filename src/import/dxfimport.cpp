#include "import/dxfimport.h"

DxfImport::~DxfImport() = default;

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
