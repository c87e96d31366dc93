#include "literal/literalmifimport.h"

#include "status.h"

#include <QSet>

namespace literal {

namespace {

const QSet<QString>& keywords()
{
    static const QSet<QString> names{ QStringLiteral("NONE"), QStringLiteral("POINT"),
        QStringLiteral("LINE"), QStringLiteral("PLINE"), QStringLiteral("REGION"),
        QStringLiteral("ARC"), QStringLiteral("TEXT"), QStringLiteral("RECT"),
        QStringLiteral("ROUNDRECT"), QStringLiteral("ELLIPSE"), QStringLiteral("MULTIPOINT"),
        QStringLiteral("COLLECTION") };
    return names;
}

} // namespace

bool MifImport::readTokenizeMifLine(bool split)
{
    line = in.readLine().simplified();
    ++lineNum;
    if (split)
        tokens = line.split(QLatin1Char(' '));
    return !line.isEmpty();
}

bool MifImport::checkMifFile()
{
    for (const char* name : { "VERSION", "CHARSET", "DELIMITER" }) {
        readTokenizeMifLine(true);
        if (tokens.size() != 2 || tokens[0].toUpper() != QLatin1String(name)) {
            reportFile(
                QStringLiteral("Ошибка. Файл %1 не соответствует формату MIF"), file.fileName());
            return false;
        }
    }
    QString value = tokens[1];
    value.remove(QLatin1Char('"'));
    value.remove(QLatin1Char(' '));
    if (!value.isEmpty())
        delimiter = value[0];
    return true;
}

bool MifImport::openMidFile()
{
    QString name = file.fileName();
    name[name.size() - 1] = QLatin1Char('d');
    midLineNum = 0;
    return open(midFile, midIn, name, QStringLiteral("Ошибка открытия MID файла %1"));
}

bool MifImport::readMidLine()
{
    midLine = midIn.readLine().trimmed();
    ++midLineNum;
    return !midLine.isEmpty();
}

QString MifImport::extractDef(const QString& row) const
{
    QString result;
    bool atStart = true;
    bool inQuotes = false;
    for (const QChar c : row) {
        if (c == QLatin1Char(' ') && atStart)
            continue;
        if (c == QLatin1Char('"')) {
            if (inQuotes)
                break;
            inQuotes = true;
            atStart = true;
            continue;
        }
        if (c == delimiter && !inQuotes)
            break;
        result.append(c);
        atStart = false;
    }
    while (result.endsWith(QLatin1Char(' ')))
        result.chop(1);
    return result;
}

bool MifImport::fail(const QString& text, int number) const
{
    showStatus(text.arg(number));
    return false;
}

/// The way of both passes to the line after DATA.
bool MifImport::startPass(bool withMid)
{
    midFile.close();
    if (!checkMifFile() || (withMid && !openMidFile()))
        return false;
    while (!in.atEnd()) {
        readTokenizeMifLine(false);
        if (line.compare(QLatin1String("DATA"), Qt::CaseInsensitive) == 0)
            break;
    }
    return true;
}

/// The keyword of the next object; empty at the end of the file or at a collection.
QString MifImport::nextKeyword()
{
    while (!in.atEnd()) {
        if (!readTokenizeMifLine(true))
            continue;
        const QString keyword = tokens[0].toUpper();
        if (keyword == QLatin1String("COLLECTION")) {
            fail(QStringLiteral("Ошибка в стоке %1. Коллекции в MIF файлах не поддерживаются."),
                lineNum);
            return QString();
        }
        if (keywords().contains(keyword))
            return keyword;
    }
    return QString();
}

bool MifImport::loadPoints()
{
    if (!startPass(searchPointDefs))
        return false;
    for (QString keyword = nextKeyword(); !keyword.isEmpty(); keyword = nextKeyword()) {
        const bool isPoint = keyword == QLatin1String("POINT");
        if (isPoint && !readPoint())
            return fail(QStringLiteral("Ошибка чтения координат точки из строки: %1"), lineNum);
        if (!midFile.isOpen())
            continue;
        if (!readMidLine()) {
            return fail(isPoint ? QStringLiteral("Ошибка чтения обозначения точки из строки: %1")
                                : QStringLiteral("Ошибка чтения данных объекта из строки: %1"),
                midLineNum);
        }
        if (isPoint)
            catalogue.points.last().def = extractDef(midLine);
    }
    return true;
}

bool MifImport::loadPolygons()
{
    if (!startPass(searchObjectDefs))
        return false;
    for (QString keyword = nextKeyword(); !keyword.isEmpty(); keyword = nextKeyword()) {
        bool isObject = true;
        if (keyword == QLatin1String("LINE")) {
            if (!readLine())
                return fail(QStringLiteral("Ошибка чтения линии из строки: %1"), lineNum);
        } else if (keyword == QLatin1String("PLINE")) {
            const bool multiple = token(1).toUpper() == QLatin1String("MULTIPLE");
            if (!(multiple ? readPlineMultiple() : readPline()))
                return fail(QStringLiteral("Ошибка чтения полилинии из строки: %1"), lineNum);
        } else if (keyword == QLatin1String("REGION")) {
            if (!readRegion())
                return fail(QStringLiteral("Ошибка чтения области из строки: %1"), lineNum);
        } else {
            isObject = false;
        }

        QString def;
        if (midFile.isOpen()) {
            if (!readMidLine()) {
                return fail(isObject
                        ? QStringLiteral("Ошибка чтения обозначения объекта из строки: %1")
                        : QStringLiteral("Ошибка чтения данных объекта из строки: %1"),
                    midLineNum);
            }
            def = extractDef(midLine);
        }
        if (isObject)
            setLastPolygonDef(def);
    }
    return true;
}

bool MifImport::readPoint()
{
    bool okX, okY;
    const double x = token(1).toDouble(&okX);
    const double y = token(2).toDouble(&okY);
    if (!okX || !okY)
        return false;
    catalogue.points.append(DefPoint{ QString(), x, y });
    return true;
}

bool MifImport::readLine()
{
    bool ok1, ok2, ok3, ok4;
    const double x1 = token(1).toDouble(&ok1);
    const double y1 = token(2).toDouble(&ok2);
    const double x2 = token(3).toDouble(&ok3);
    const double y2 = token(4).toDouble(&ok4);
    if (!ok1 || !ok2 || !ok3 || !ok4)
        return false;
    map->append(DefPolygon());
    map->last().contours.append(QVector<DefPoint>());
    appendVert(x1, y1, false);
    appendVert(x2, y2, false);
    return true;
}

bool MifImport::readPline()
{
    map->append(DefPolygon());
    bool ok;
    const int count = token(1).toInt(&ok);
    return ok && count >= 2 && readSub(count, false);
}

bool MifImport::readPlineMultiple()
{
    map->append(DefPolygon());
    bool ok;
    const int sections = token(2).toInt(&ok);
    if (!ok || sections < 2 || in.atEnd())
        return false;
    int done = 0;
    while (done < sections && !in.atEnd()) {
        readTokenizeMifLine(false);
        const int count = line.toInt(&ok);
        if (!ok || count < 2 || !readSub(count, false))
            return false;
        ++done;
    }
    return done == sections;
}

bool MifImport::readRegion()
{
    map->append(DefPolygon());
    bool ok;
    const int rings = token(1).toInt(&ok);
    if (!ok)
        return false;
    if (in.atEnd() || rings < 1)
        return rings == 0;
    int done = 0;
    while (done < rings && !in.atEnd()) {
        readTokenizeMifLine(false);
        const int count = line.toInt(&ok);
        if (!ok || count < 3 || !readSub(count, true))
            return false;
        ++done;
    }
    return done == rings;
}

bool MifImport::readSub(int count, bool closed)
{
    map->last().contours.append(QVector<DefPoint>());
    if (in.atEnd() || count < 1)
        return count == 0;
    int done = 0;
    while (done < count && !in.atEnd()) {
        if (!readVert(closed && done == count - 1))
            return false;
        ++done;
    }
    return done == count;
}

bool MifImport::readVert(bool closing)
{
    readTokenizeMifLine(true);
    bool okX = false, okY = false;
    const double x = token(0).toDouble(&okX);
    const double y = token(1).toDouble(&okY);
    if (tokens.size() != 2 || !okX || !okY)
        return false;
    appendVert(x, y, closing);
    return true;
}

} // namespace literal
