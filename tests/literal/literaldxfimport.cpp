#include "literal/literaldxfimport.h"

#include "literal/literalgeometry.h"
#include "status.h"

#include <QRegularExpression>

#include <algorithm>

namespace literal {

bool DxfImport::failAtLine() const
{
    showStatus(QStringLiteral("Ошибка чтения DXF файла в строке: %1").arg(lineNum));
    return false;
}

bool DxfImport::readCodeValue()
{
    if (unread) {
        unread = false;
        return true;
    }
    QString line = in.readLine();
    code = line.trimmed();
    ++lineNum;
    if (code.isEmpty())
        return false;
    line = in.readLine();
    value = line.trimmed();
    ++lineNum;
    return true;
}

bool DxfImport::checkDxfFile()
{
    bool isDxf =
        readCodeValue() && code == QStringLiteral("0") && value == QStringLiteral("SECTION");
    if (isDxf)
        isDxf = readCodeValue() && code == QStringLiteral("2") && value == QStringLiteral("HEADER");
    if (!isDxf)
        reportFile(QStringLiteral("Ошибка. Файл %1 не соответствует формату DXF"), file.fileName());
    return isDxf;
}

bool DxfImport::readRequired(QSet<QString> required, QHash<QString, double>* numbers)
{
    const QSet<QString> all = required;
    while (!required.isEmpty()) {
        if (in.atEnd())
            return false;
        if (!readCodeValue())
            return false;
        if (all.contains(code)) {
            bool ok = false;
            (*numbers)[code] = value.toDouble(&ok);
            if (!ok)
                return false;
        }
        required.remove(code);
    }
    return true;
}

bool DxfImport::readPoint()
{
    QHash<QString, double> numbers;
    if (!readRequired({ QStringLiteral("10"), QStringLiteral("20") }, &numbers))
        return false;
    catalogue.points.append(
        DefPoint{ QString(), numbers[QStringLiteral("10")], numbers[QStringLiteral("20")] });
    return true;
}

bool DxfImport::readText()
{
    QHash<QString, QString> hash;
    while (!in.atEnd()) {
        if (!readCodeValue())
            return false;
        if (code == QStringLiteral("0")) {
            unread = true;
            break;
        }
        hash[code] = value;
    }
    for (const char* key : { "10", "20", "1" }) {
        if (!hash.contains(QLatin1String(key)))
            return false;
    }
    bool okX = false;
    bool okY = false;
    double x = hash[QStringLiteral("10")].toDouble(&okX);
    double y = hash[QStringLiteral("20")].toDouble(&okY);
    if (!okX || !okY)
        return false;
    const QString def = decodeText(hash[QStringLiteral("1")], codec);
    const int h = hash.value(QStringLiteral("72"), QStringLiteral("0")).toInt();
    const int v = hash.value(QStringLiteral("73"), QStringLiteral("0")).toInt();
    if ((h != 0 || v != 0) && hash.contains(QStringLiteral("11"))
        && hash.contains(QStringLiteral("21"))) {
        x = hash[QStringLiteral("11")].toDouble(&okX);
        y = hash[QStringLiteral("21")].toDouble(&okY);
        if (!okX || !okY)
            return false;
    }
    texts.append(DefPoint{ def, x, y });
    return true;
}

bool DxfImport::readLine()
{
    QHash<QString, double> numbers;
    if (!readRequired({ QStringLiteral("10"), QStringLiteral("20"), QStringLiteral("11"),
                          QStringLiteral("21") },
            &numbers))
        return false;
    map->append(DefPolygon());
    map->last().contours.append(QVector<DefPoint>());
    appendVert(numbers[QStringLiteral("10")], numbers[QStringLiteral("20")]);
    appendVert(numbers[QStringLiteral("11")], numbers[QStringLiteral("21")]);
    return true;
}

bool DxfImport::readVertex()
{
    QHash<QString, double> numbers;
    if (!readRequired({ QStringLiteral("10"), QStringLiteral("20") }, &numbers))
        return false;
    appendVert(numbers[QStringLiteral("10")], numbers[QStringLiteral("20")]);
    return true;
}

bool DxfImport::readPolyline()
{
    map->append(DefPolygon());
    map->last().contours.append(QVector<DefPoint>());
    if (in.atEnd())
        return false;
    bool closed = false;
    for (;;) {
        if (!readCodeValue())
            return false;
        if (code != QStringLiteral("0")) {
            if (code == QStringLiteral("70") && value == QStringLiteral("1"))
                closed = true;
        } else if (value == QStringLiteral("VERTEX")) {
            if (!readVertex())
                return false;
        } else {
            break;
        }
        if (in.atEnd())
            return false;
    }
    if (value != QStringLiteral("SEQEND"))
        return false;
    return closeContour(closed);
}

bool DxfImport::readLwpolyline()
{
    map->append(DefPolygon());
    map->last().contours.append(QVector<DefPoint>());
    const QSet<QString> both{ QStringLiteral("10"), QStringLiteral("20") };
    QSet<QString> required = both;
    qint64 count = 0;
    bool first = true;
    bool closed = false;
    double x = 0;
    double y = 0;
    bool ok = true;
    for (;;) {
        if (in.atEnd() || !ok)
            return false;
        if (!readCodeValue())
            return false;
        if (code == QStringLiteral("70"))
            closed = (value.toInt() & 1) != 0;
        if (code == QStringLiteral("90"))
            count = value.toInt(&ok);
        if (code == QStringLiteral("10"))
            x = value.toDouble(&ok);
        if (code == QStringLiteral("20"))
            y = value.toDouble(&ok);
        if (code == QStringLiteral("0"))
            return false;
        required.remove(code);
        if (!required.isEmpty())
            continue;
        if (first && count < 2)
            return false;
        appendVert(x, y);
        if (count == 1)
            break;
        --count;
        required = both;
        first = false;
    }
    return closeContour(closed);
}

bool DxfImport::closeContour(bool closed)
{
    QVector<DefPoint>& contour = lastContour();
    const bool result = contour.size() >= 2;
    if (result && closed && !samePlace(contour.first(), contour.last())) {
        const DefPoint copy = contour.first();
        contour.append(copy);
    }
    return result;
}

bool DxfImport::loadPoints()
{
    if (!checkDxfFile())
        return false;
    const QSet<QString> pointTypes{ QStringLiteral("INSERT"), QStringLiteral("POINT"),
        QStringLiteral("CIRCLE"), QStringLiteral("ELLIPSE") };
    texts.clear();
    bool inEntities = false;
    bool ok = true;
    while (!in.atEnd() && ok) {
        if (!readCodeValue())
            return failAtLine();
        while (code != QStringLiteral("0")) {
            if (in.atEnd())
                return true;
            if (!readCodeValue())
                return failAtLine();
        }
        if (value == QStringLiteral("SECTION")) {
            if (!readCodeValue())
                return failAtLine();
            inEntities = value == QStringLiteral("ENTITIES");
            continue;
        }
        if (!inEntities)
            continue;
        if (pointTypes.contains(value))
            ok = readPoint();
        else if (value == QStringLiteral("TEXT"))
            ok = readText();
    }
    return ok || failAtLine();
}

bool DxfImport::loadPolygons()
{
    if (!checkDxfFile())
        return false;
    updatePointsDefs();
    if (searchObjectDefs) {
        if (!searchPointDefs || !pointFileName.isEmpty()) {
            texts.clear();
            loadTextsOnly();
        }
        filterObjectDefs();
    }
    if (in.atEnd())
        return true;
    bool inEntities = false;
    for (;;) {
        if (!readCodeValue())
            return failAtLine();
        if (code == QStringLiteral("0") && value == QStringLiteral("SECTION")) {
            if (!readCodeValue())
                return failAtLine();
            inEntities = value == QStringLiteral("ENTITIES");
        } else if (code == QStringLiteral("0") && inEntities) {
            const QString type = value;
            bool ok = true;
            bool isObject = true;
            if (type == QStringLiteral("LINE"))
                ok = readLine();
            else if (type == QStringLiteral("POLYLINE"))
                ok = readPolyline();
            else if (type == QStringLiteral("LWPOLYLINE"))
                ok = readLwpolyline();
            else
                isObject = false;
            if (!ok)
                return failAtLine();
            if (isObject)
                updateLastPolygonDef();
        }
        if (in.atEnd())
            return true;
    }
}

void DxfImport::updatePointsDefs()
{
    if (catalogue.isEmpty() || texts.isEmpty())
        return;
    sortPoints(texts);
    const QVector<DefPoint> places = definedPoints(texts);
    for (DefPoint& point : catalogue.points) {
        const int text = findNearestPoint(places, QPointF(point.x, point.y));
        if (text >= 0)
            point.def = places[text].def;
    }
}

bool DxfImport::loadTextsOnly()
{
    bool inEntities = false;
    bool ok = true;
    while (!in.atEnd() && ok) {
        if (!readCodeValue())
            return failAtLine();
        if (code != QStringLiteral("0"))
            continue;
        if (value == QStringLiteral("SECTION")) {
            if (!readCodeValue())
                return failAtLine();
            inEntities = value == QStringLiteral("ENTITIES");
        } else if (inEntities && value == QStringLiteral("TEXT")) {
            ok = readText();
        }
    }
    if (!ok)
        return failAtLine();
    sortPoints(texts);
    file.seek(0);
    in.seek(0);
    return true;
}

void DxfImport::filterObjectDefs()
{
    QVector<DefPoint> others;
    for (const DefPoint& text : qAsConst(texts)) {
        if (!isPointNumber(text.def))
            others.append(text);
    }
    if (!others.isEmpty())
        texts = others;
}

void DxfImport::updateLastPolygonDef()
{
    QString def;
    if (searchObjectDefs) {
        const QPointF centroid = map->last().centroid();
        const QVector<DefPoint> places = definedPoints(texts);
        const int text = findNearestPoint(places, swapXY ? centroid.transposed() : centroid);
        if (text >= 0)
            def = places[text].def;
    }
    setLastPolygonDef(def);
}

QString decodeText(const QString& text, const QTextCodec* codec)
{
    static const QRegularExpression escape(QStringLiteral("%%(\\d{3})"));
    QString result = text;
    result.replace(QStringLiteral("%%d"), QString(QChar(0x00B0)));
    result.replace(QStringLiteral("%%p"), QString(QChar(0x00B1)));
    result.replace(QStringLiteral("%%c"), QString(QChar(0x00D8)));

    QList<QRegularExpressionMatch> matches;
    QRegularExpressionMatchIterator it = escape.globalMatch(result);
    while (it.hasNext())
        matches << it.next();
    for (int i = matches.size() - 1; i >= 0; --i) {
        const QRegularExpressionMatch& match = matches.at(i);
        bool ok = false;
        const int number = match.captured(1).toInt(&ok, 10);
        if (!ok || number < 0 || number > 255)
            continue;
        const char byte = static_cast<char>(number);
        result.replace(match.capturedStart(0), match.capturedLength(0), codec->toUnicode(&byte, 1));
    }
    return result;
}

bool isPointNumber(const QString& def)
{
    static const QRegularExpression pointNumber(QStringLiteral("^[A-Za-zА-Яа-яЁё]?\\d+$"));
    return pointNumber.match(def).hasMatch();
}

} // namespace literal
