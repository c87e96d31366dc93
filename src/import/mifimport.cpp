#include "import/mifimport.h"

#include "import/mifkeywords.h"
#include "import/number.h"

#include <algorithm>

namespace {

/// A count is only a claim: room for more vertices than this is made as they come.
constexpr int maxReserved = 64;

/// Whether a line starts with a digit, a sign or the like, as most do.
bool startsNumber(TextView line)
{
    return line.isAscii() && !line.isEmpty() && *line.ascii() > ' ' && *line.ascii() <= '9';
}

} // namespace

MifImport::~MifImport() = default;

// Lines

bool MifImport::readTokenizeMifLine(bool split)
{
    line = in.readLine().trimmed();
    if (split)
        tokenize();
    return !line.isEmpty();
}

void MifImport::tokenize()
{
    tokens.clear();
    TextView rest = line;
    for (TextView token = takeToken(rest); !token.isEmpty(); token = takeToken(rest)) {
        tokens.push_back(token);
        if (tokens.size() == mostTokens)
            return;
    }
}

double MifImport::tokenToDouble(size_t index, bool* ok) const
{
    *ok = false;
    return index < tokens.size() ? toDouble(tokens.at(index), ok) : 0;
}

bool MifImport::readCount(int least, int* count)
{
    readTokenizeMifLine(false);
    bool ok = false;
    *count = toInt(line, &ok);
    return ok && *count >= least;
}

// Header and MID rows

bool MifImport::isHeaderLine(QLatin1String keyword) const
{
    return tokens.size() == 2 && isMifKeyword(tokens.front(), keyword);
}

bool MifImport::checkMifFile()
{
    for (const char* keyword : { "VERSION", "CHARSET", "DELIMITER" }) {
        readTokenizeMifLine(true);
        if (!isHeaderLine(QLatin1String(keyword)))
            return failFormat(FailureKind::NotMif);
    }
    const QString value = tokens.at(1).toString().remove(QLatin1Char('"'));
    if (!value.isEmpty())
        mid.delimiter = value.front();
    return true;
}

bool MifImport::openMidFile()
{
    const QString name = midFileName(in.fileName());
    return mid.open(name, codec) || failFile(FailureKind::MidNotOpened, name);
}

bool MifImport::failAtMidRow(FailureKind kind)
{
    observer->failed({ kind, mid.fileName(), mid.lineNum(), mid.lineNum() });
    return false;
}

// Passes

bool MifImport::loadPoints()
{
    return scan(searchPointDefs, &MifImport::loadPoint);
}

bool MifImport::loadPolygons()
{
    return scan(searchObjectDefs, &MifImport::loadPolygon);
}

bool MifImport::scan(bool withMid, ObjectHandler handle)
{
    if (!checkMifFile())
        return false;
    if (withMid && !openMidFile())
        return false;
    const bool done = scanObjects(handle);
    mid.close();
    return done;
}

bool MifImport::scanObjects(ObjectHandler handle)
{
    bool inData = false;
    while (!in.atEnd() && !inData) {
        readTokenizeMifLine(false);
        inData = line.equalsIgnoringCase(QLatin1String("DATA"));
    }
    while (!in.atEnd()) {
        line = in.readLine();
        if (startsNumber(line))
            continue;
        m_behindKeyword = line;
        const MifObjectKind* const kind = takeObjectKind(m_behindKeyword);
        if (!kind)
            continue;
        startEntity(kind->name);
        if (kind->keyword == MifKeyword::Collection) {
            fail(FailureKind::Collection);
            return true;
        }
        if (!(this->*handle)(*kind))
            return false;
    }
    return true;
}

bool MifImport::skipObject()
{
    return mid.readMidDef(nullptr) || failAtMidRow(FailureKind::ObjectData);
}

bool MifImport::loadPoint(const MifObjectKind& kind)
{
    if (kind.keyword != MifKeyword::Point)
        return skipObject();
    if (!readPoint())
        return fail(FailureKind::PointCoordinates);
    QString def;
    if (!mid.readMidDef(&def))
        return failAtMidRow(FailureKind::PointDesignation);
    points.setDef(points.size() - 1, def);
    observer->entityRead(kind.name);
    return true;
}

bool MifImport::loadPolygon(const MifObjectKind& kind)
{
    const auto load = [&](auto read, FailureKind failure, bool closed) {
        const int objectCount = map->size();
        const bool isRead = (this->*read)();
        const bool complete = (isRead || fail(failure)) && nameObject();
        if (map->size() > objectCount)
            observer->objectBuilt(kind.name, closed, complete);
        return complete;
    };
    switch (kind.keyword) {
    case MifKeyword::Line:
        return load(&MifImport::readLine, FailureKind::Line, false);
    case MifKeyword::Pline:
        return load(isMultiple() ? &MifImport::readPlineMultiple : &MifImport::readPline,
            FailureKind::Polyline, false);
    case MifKeyword::Region:
        return load(&MifImport::readRegion, FailureKind::Region, true);
    default:
        return skipObject();
    }
}

bool MifImport::isMultiple() const
{
    TextView rest = m_behindKeyword;
    return isMifKeyword(takeToken(rest), QLatin1String("MULTIPLE"));
}

bool MifImport::nameObject()
{
    QString def;
    if (!mid.readMidDef(&def))
        return failAtMidRow(FailureKind::ObjectDesignation);
    setLastPolygonDef(def);
    return true;
}

// Objects

bool MifImport::readPoint()
{
    double x = 0;
    double y = 0;
    if (!toPlainPair(m_behindKeyword.trimmed(), &x, &y)) {
        tokenize();
        bool okX = false;
        bool okY = false;
        x = tokenToDouble(1, &okX);
        y = tokenToDouble(2, &okY);
        if (!okX || !okY)
            return false;
    }
    points.append(DefPoint{ QString(), x, y });
    return true;
}

bool MifImport::readLine()
{
    tokenize();
    double coordinates[4];
    for (size_t i = 0; i < 4; ++i) {
        bool ok = false;
        coordinates[i] = tokenToDouble(i + 1, &ok);
        if (!ok)
            return false;
    }
    appendEmptyPolygon();
    appendEmptyContour();
    appendVert(coordinates[0], coordinates[1], false);
    appendVert(coordinates[2], coordinates[3], false);
    return true;
}

bool MifImport::readPline()
{
    appendEmptyPolygon();
    bool ok = false;
    const int count = toInt(takeToken(m_behindKeyword), &ok);
    return ok && count >= 2 && readSub(count, false);
}

bool MifImport::readPlineMultiple()
{
    appendEmptyPolygon();
    bool ok = false;
    takeToken(m_behindKeyword);
    const int sectionCount = toInt(takeToken(m_behindKeyword), &ok);
    if (!ok || sectionCount < 2)
        return false;
    int sections = 0;
    while (sections < sectionCount && !in.atEnd()) {
        int count = 0;
        if (!readCount(2, &count) || !readSub(count, false))
            return false;
        ++sections;
    }
    return sections == sectionCount;
}

bool MifImport::readRegion()
{
    appendEmptyPolygon();
    bool ok = false;
    const int ringCount = toInt(takeToken(m_behindKeyword), &ok);
    if (!ok)
        return false;
    if (ringCount < 1)
        return ringCount == 0;
    int rings = 0;
    while (rings < ringCount && !in.atEnd()) {
        int count = 0;
        if (!readCount(3, &count) || !readSub(count, true))
            return false;
        ++rings;
    }
    return rings == ringCount;
}

bool MifImport::readSub(int count, bool closed)
{
    appendEmptyContour();
    map->last().contours.last().reserve(std::min(count, maxReserved));
    int vertices = 0;
    while (vertices < count && !in.atEnd()) {
        if (!readVert(closed && vertices == count - 1))
            return false;
        ++vertices;
    }
    return vertices == count;
}

bool MifImport::readVert(bool closing)
{
    line = in.readLine();
    double x = 0;
    double y = 0;
    if (!toPlainPair(line, &x, &y)) {
        tokenize();
        bool okX = false;
        bool okY = false;
        x = tokenToDouble(0, &okX);
        y = tokenToDouble(1, &okY);
        if (tokens.size() != 2 || !okX || !okY)
            return false;
    }
    appendVert(x, y, closing);
    return true;
}
