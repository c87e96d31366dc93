#include "import/dxfimport.h"

#include "geometry/nearestpoint.h"
#include "import/number.h"

#include <algorithm>

namespace {

constexpr QLatin1String entityCode("0");

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

bool isLatinOrRussianLetter(QChar c)
{
    const auto isBetween = [c](char16_t first, char16_t last) {
        return c.unicode() >= first && c.unicode() <= last;
    };
    return isBetween(u'A', u'Z') || isBetween(u'a', u'z') || isBetween(u'А', u'я') || c == u'Ё'
        || c == u'ё';
}

/// Whether a text looks like a point number: at most one letter, then digits. A line feed at the
/// very end is overlooked.
bool isPointDef(const QString& def)
{
    auto it = def.cbegin();
    const auto end = def.endsWith(QLatin1Char('\n')) ? def.cend() - 1 : def.cend();
    if (it != end && isLatinOrRussianLetter(*it))
        ++it;
    return it != end && std::all_of(it, end, isDigit);
}

/// `text` with every `escape` replaced by `symbol`, at a cost in step with its length.
QString withSymbol(const QString& text, QLatin1String escape, QChar symbol)
{
    QString result;
    int start = 0;
    for (int hit = text.indexOf(escape); hit >= 0; hit = text.indexOf(escape, start)) {
        result.append(QStringView(text).mid(start, hit - start)).append(symbol);
        start = hit + escape.size();
    }
    return start == 0 ? text : result.append(QStringView(text).mid(start));
}

/// The number of a %%nnn escape at the start of `text`, or -1.
int escapedByte(QStringView text)
{
    constexpr int length = 5;
    if (text.size() < length || text.at(0) != QLatin1Char('%') || text.at(1) != QLatin1Char('%'))
        return -1;
    const QStringView digits = text.mid(2, 3);
    return std::all_of(digits.begin(), digits.end(), isDigit) ? digits.toString().toInt() : -1;
}

/// One coordinate of an entity, as last seen.
struct Coordinate {
    bool present = false;
    bool ok = false;
    double value = 0;

    void read(QStringView text)
    {
        present = true;
        value = toDouble(text, &ok);
    }
};

} // namespace

DxfImport::~DxfImport() = default;

// Pairs

bool DxfImport::readCodeValue()
{
    if (unread) {
        unread = false;
        return true;
    }
    code = in.readLine().trimmed();
    if (code.isEmpty())
        return false;
    value = in.readLine().trimmed();
    return true;
}

void DxfImport::keepPair()
{
    m_keptCode = code.toString();
    m_keptValue = value.toString();
    code = m_keptCode;
    value = m_keptValue;
}

bool DxfImport::checkDxfFile()
{
    const bool isDxf = readCodeValue() && code == entityCode && value == QLatin1String("SECTION")
        && readCodeValue() && code == QLatin1String("2") && value == QLatin1String("HEADER");
    if (!isDxf) {
        reportFile(QStringLiteral("Ошибка. Файл %1 не соответствует формату DXF"), in.fileName());
    }
    return isDxf;
}

QString DxfImport::decodeText(const QString& text) const
{
    if (!text.contains(QLatin1String("%%")))
        return text;

    QString symbols = withSymbol(text, QLatin1String("%%d"), QChar(0x00B0));
    symbols = withSymbol(symbols, QLatin1String("%%p"), QChar(0x00B1));
    symbols = withSymbol(symbols, QLatin1String("%%c"), QChar(0x00D8));
    if (!symbols.isValidUtf16())
        return symbols;

    QString result;
    result.reserve(symbols.size());
    for (int i = 0; i < symbols.size();) {
        const int byte = escapedByte(QStringView(symbols).mid(i));
        if (byte < 0) {
            result.append(symbols.at(i++));
            continue;
        }
        if (byte <= 255)
            result.append(codec->toUnicode(QByteArray(1, static_cast<char>(byte))));
        else
            result.append(QStringView(symbols).mid(i, 5));
        i += 5;
    }
    return result;
}

// Entities

template <size_t Count>
bool DxfImport::readCoordinates(
    const std::array<QLatin1String, Count>& codes, std::array<double, Count>& coordinates)
{
    std::array<bool, Count> seen{};
    size_t missing = Count;
    while (missing > 0) {
        if (in.atEnd() || !readCodeValue())
            return false;
        for (size_t i = 0; i < Count; ++i) {
            if (code != codes[i])
                continue;
            bool ok = false;
            coordinates[i] = toDouble(value, &ok);
            if (!ok)
                return false;
            missing -= seen[i] ? 0 : 1;
            seen[i] = true;
        }
    }
    return true;
}

static constexpr std::array<QLatin1String, 2> pointCodes{ QLatin1String("10"),
    QLatin1String("20") };
static constexpr std::array<QLatin1String, 4> lineCodes{ QLatin1String("10"), QLatin1String("20"),
    QLatin1String("11"), QLatin1String("21") };

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
    while (!in.atEnd()) {
        if (!readCodeValue())
            return false;
        if (code == entityCode) {
            unread = true;
            break;
        }
        if (code == QLatin1String("1")) {
            hasText = true;
            text = value.toString();
        } else if (code == QLatin1String("10")) {
            x.read(value);
        } else if (code == QLatin1String("20")) {
            y.read(value);
        } else if (code == QLatin1String("11")) {
            alignedX.read(value);
        } else if (code == QLatin1String("21")) {
            alignedY.read(value);
        } else if (code == QLatin1String("72")) {
            horizontal = value.toString().toInt();
        } else if (code == QLatin1String("73")) {
            vertical = value.toString().toInt();
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
    texts.append(DefPoint{ decodeText(text), x.value, y.value });
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
    bool closed = false;
    while (!in.atEnd()) {
        if (!readCodeValue())
            return false;
        if (code == entityCode) {
            if (value != QLatin1String("VERTEX"))
                return value == QLatin1String("SEQEND") && closeContour(closed);
            if (!readVertex())
                return false;
        } else if (code == QLatin1String("70") && value == QLatin1String("1")) {
            closed = true;
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
    bool closed = false;
    for (;;) {
        // A bad number is noticed here, one step late: after the last vertex it goes unnoticed.
        if (in.atEnd() || !ok || !readCodeValue() || code == entityCode)
            return false;
        if (code == QLatin1String("10")) {
            x.read(value);
            ok = x.ok;
        } else if (code == QLatin1String("20")) {
            y.read(value);
            ok = y.ok;
        } else if (code == QLatin1String("70")) {
            closed = value.toString().toInt() & 1;
        } else if (code == QLatin1String("90")) {
            count = value.toString().toInt(&ok);
        }
        if (!x.present || !y.present)
            continue;
        if (first && count < 2)
            return false;
        appendVert(x.value, y.value, false);
        if (count == 1)
            return closeContour(closed);
        --count;
        first = false;
        x.present = false;
        y.present = false;
    }
}

bool DxfImport::closeContour(bool closed)
{
    QVector<DefPoint>& contour = map->last().contours.last();
    if (contour.size() < 2)
        return false;
    if (closed && !coincide(contour.first(), contour.last()))
        contour.append(DefPoint(contour.first()));
    return true;
}

// Passes

bool DxfImport::scanEntities(EntityReceiver receive)
{
    bool inEntities = false;
    bool ok = true;
    while (ok && !in.atEnd()) {
        ok = readCodeValue();
        if (!ok || code != entityCode)
            continue;
        if (value == QLatin1String("SECTION")) {
            ok = readCodeValue();
            inEntities = value == QLatin1String("ENTITIES");
        } else if (inEntities) {
            ok = (this->*receive)();
        }
    }
    if (unread)
        keepPair();
    if (!ok)
        report(QStringLiteral("Ошибка чтения DXF файла в строке: %1"), in.lineNum());
    return ok;
}

bool DxfImport::receivePointOrText()
{
    for (const char* type : { "POINT", "INSERT", "CIRCLE", "ELLIPSE" }) {
        if (value == QLatin1String(type))
            return readPoint();
    }
    return receiveText();
}

bool DxfImport::receiveText()
{
    return value != QLatin1String("TEXT") || readText();
}

bool DxfImport::receivePolygon()
{
    bool ok = false;
    if (value == QLatin1String("LWPOLYLINE"))
        ok = readLwpolyline();
    else if (value == QLatin1String("LINE"))
        ok = readLine();
    else if (value == QLatin1String("POLYLINE"))
        ok = readPolyline();
    else
        return true;
    if (ok)
        updateLastPolygonDef();
    return ok;
}

bool DxfImport::loadPoints()
{
    if (!checkDxfFile())
        return false;
    texts.clear();
    return scanEntities(&DxfImport::receivePointOrText);
}

bool DxfImport::loadPolygons()
{
    if (!checkDxfFile())
        return false;
    updatePointsDefs();
    if (searchObjectDefs) {
        const bool textsAreOfThisFile = searchPointDefs && pointFileName.isEmpty();
        if (!textsAreOfThisFile) {
            texts.clear();
            loadTextsOnly();
        }
        filterObjectDefs();
        indexTexts();
    }
    return scanEntities(&DxfImport::receivePolygon);
}

// Labels

void DxfImport::indexTexts()
{
    m_textIndex.reset();
    if (std::is_sorted(texts.cbegin(), texts.cend()))
        m_textIndex.emplace(texts);
}

const DefPoint* DxfImport::findText(const QPointF& place) const
{
    return m_textIndex ? m_textIndex->find(place) : findNearestPoint(texts, place);
}

void DxfImport::updatePointsDefs()
{
    if (points.isEmpty() || texts.isEmpty())
        return;
    sortPoints(texts);
    indexTexts();
    for (int i = 0; i < points.size(); ++i) {
        const DefPoint& point = points.at(i);
        if (const DefPoint* text = findText(QPointF(point.x, point.y)))
            points.setDef(i, text->def);
    }
}

bool DxfImport::loadTextsOnly()
{
    if (!scanEntities(&DxfImport::receiveText))
        return false;
    sortPoints(texts);
    resetInFileStream();
    return true;
}

void DxfImport::filterObjectDefs()
{
    QVector<DefPoint> objectTexts;
    std::copy_if(texts.cbegin(), texts.cend(), std::back_inserter(objectTexts),
        [](const DefPoint& text) { return !isPointDef(text.def); });
    if (!objectTexts.isEmpty())
        texts = objectTexts;
}

void DxfImport::updateLastPolygonDef()
{
    QString def;
    if (searchObjectDefs) {
        QPointF centroid = map->last().centroid();
        if (swapXY)
            centroid = centroid.transposed();
        if (const DefPoint* text = findText(centroid))
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
