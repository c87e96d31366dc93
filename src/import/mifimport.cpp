#include "import/mifimport.h"

#include "import/number.h"

#include <algorithm>

namespace {

/// A count is only a claim: room for more vertices than this is made as they come.
constexpr int maxReserved = 64;

bool isAscii(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

/// Whether `token` in upper case equals the upper-case `keyword`.
bool isKeyword(QStringView token, QLatin1String keyword)
{
    if (isAscii(token))
        return token.compare(keyword, Qt::CaseInsensitive) == 0;
    return token.toString().toUpper() == keyword;
}

} // namespace

MifImport::~MifImport() = default;

MifImport::Keyword MifImport::keywordOf(QStringView token)
{
    static constexpr struct {
        QLatin1String name;
        Keyword keyword;
    } objects[] = {
        { QLatin1String("REGION"), Keyword::Region },
        { QLatin1String("PLINE"), Keyword::Pline },
        { QLatin1String("LINE"), Keyword::Line },
        { QLatin1String("POINT"), Keyword::Point },
        { QLatin1String("NONE"), Keyword::Skipped },
        { QLatin1String("ARC"), Keyword::Skipped },
        { QLatin1String("TEXT"), Keyword::Skipped },
        { QLatin1String("RECT"), Keyword::Skipped },
        { QLatin1String("ROUNDRECT"), Keyword::Skipped },
        { QLatin1String("ELLIPSE"), Keyword::Skipped },
        { QLatin1String("MULTIPOINT"), Keyword::Skipped },
        { QLatin1String("COLLECTION"), Keyword::Collection },
    };
    const QChar first = token.front().toUpper();
    for (const auto& object : objects) {
        if (first == object.name.front() && token.size() == object.name.size()
            && isKeyword(token, object.name))
            return object.keyword;
    }
    return Keyword::None;
}

// Lines

bool MifImport::readTokenizeMifLine(bool split)
{
    line = in.readLine().trimmed();
    if (split)
        tokenize();
    return !line.isEmpty();
}

void MifImport::tokenize(int maxTokens)
{
    tokens.clear();
    const QChar* it = line.cbegin();
    const QChar* const end = line.cend();
    const auto isSpace = [](QChar c) { return c.isSpace(); };
    while (tokens.size() < maxTokens) {
        it = std::find_if_not(it, end, isSpace);
        if (it == end)
            return;
        const QChar* const tokenEnd = std::find_if(it, end, isSpace);
        tokens.append(QStringView(it, tokenEnd));
        it = tokenEnd;
    }
}

double MifImport::tokenToDouble(int index, bool* ok) const
{
    *ok = false;
    return index < tokens.size() ? toDouble(tokens.at(index), ok) : 0;
}

int MifImport::tokenToInt(int index, bool* ok) const
{
    *ok = false;
    return index < tokens.size() ? tokens.at(index).toString().toInt(ok) : 0;
}

bool MifImport::readCount(int least, int* count)
{
    readTokenizeMifLine(false);
    bool ok = false;
    *count = line.toString().toInt(&ok);
    return ok && *count >= least;
}

// Header and MID rows

bool MifImport::isHeaderLine(QLatin1String keyword) const
{
    return tokens.size() == 2 && isKeyword(tokens.first(), keyword);
}

bool MifImport::checkMifFile()
{
    for (const char* keyword : { "VERSION", "CHARSET", "DELIMITER" }) {
        readTokenizeMifLine(true);
        if (!isHeaderLine(QLatin1String(keyword))) {
            reportFile(
                QStringLiteral("Ошибка. Файл %1 не соответствует формату MIF"), in.fileName());
            return false;
        }
    }
    const QString value = tokens.at(1).toString().remove(QLatin1Char('"'));
    if (!value.isEmpty())
        delimiter = value.front();
    return true;
}

bool MifImport::openMidFile()
{
    QString name = in.fileName();
    // Only the last letter changes, in lower case whatever the case of the name.
    name.chop(1);
    name.append(QLatin1Char('d'));
    const bool opened = mid.open(name, codec);
    if (!opened)
        reportFile(QStringLiteral("Ошибка открытия MID файла %1"), name);
    return opened;
}

bool MifImport::readMidLine()
{
    midLine = mid.readLine().trimmed();
    return !midLine.isEmpty();
}

bool MifImport::readMidDef(QString* def)
{
    if (!mid.isOpen())
        return true;
    if (!readMidLine())
        return false;
    if (def)
        *def = extractDef(midLine);
    return true;
}

QString MifImport::extractDef(QStringView row) const
{
    const QChar space = QLatin1Char(' ');
    QVarLengthArray<QChar, 128> column;
    bool atStart = true;
    bool inQuotes = false;
    for (const QChar c : row) {
        if (c == space && atStart)
            continue;
        if (c == QLatin1Char('"')) {
            if (inQuotes)
                break;
            inQuotes = true;
            atStart = true;
        } else if (c == delimiter && !inQuotes) {
            break;
        } else {
            column.append(c);
            atStart = false;
        }
    }
    while (!column.isEmpty() && column.last() == space)
        column.removeLast();
    return column.isEmpty() ? QString() : QString(column.constData(), column.size());
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
        inData = line.compare(QLatin1String("DATA"), Qt::CaseInsensitive) == 0;
    }
    while (!in.atEnd()) {
        line = in.readLine();
        tokenize(1);
        const Keyword keyword = tokens.isEmpty() ? Keyword::None : keywordOf(tokens.first());
        if (keyword == Keyword::None)
            continue;
        tokenize();
        if (keyword == Keyword::Collection) {
            report(QStringLiteral("Ошибка в стоке %1. Коллекции в MIF файлах не поддерживаются."),
                in.lineNum());
            return true;
        }
        if (!(this->*handle)(keyword))
            return false;
    }
    return true;
}

bool MifImport::skipObject()
{
    if (readMidDef(nullptr))
        return true;
    report(QStringLiteral("Ошибка чтения данных объекта из строки: %1"), mid.lineNum());
    return false;
}

bool MifImport::loadPoint(Keyword keyword)
{
    if (keyword != Keyword::Point)
        return skipObject();
    if (!readPoint()) {
        report(QStringLiteral("Ошибка чтения координат точки из строки: %1"), in.lineNum());
        return false;
    }
    QString def;
    if (!readMidDef(&def)) {
        report(QStringLiteral("Ошибка чтения обозначения точки из строки: %1"), mid.lineNum());
        return false;
    }
    points.setDef(points.size() - 1, def);
    return true;
}

bool MifImport::loadPolygon(Keyword keyword)
{
    if (keyword == Keyword::Point || keyword == Keyword::Skipped)
        return skipObject();
    if (!readPolygon(keyword))
        return false;
    QString def;
    if (!readMidDef(&def)) {
        report(QStringLiteral("Ошибка чтения обозначения объекта из строки: %1"), mid.lineNum());
        return false;
    }
    setLastPolygonDef(def);
    return true;
}

bool MifImport::readPolygon(Keyword keyword)
{
    if (keyword == Keyword::Line) {
        if (readLine())
            return true;
        report(QStringLiteral("Ошибка чтения линии из строки: %1"), in.lineNum());
    } else if (keyword == Keyword::Pline) {
        const bool multiple =
            tokens.size() > 1 && isKeyword(tokens.at(1), QLatin1String("MULTIPLE"));
        if (multiple ? readPlineMultiple() : readPline())
            return true;
        report(QStringLiteral("Ошибка чтения полилинии из строки: %1"), in.lineNum());
    } else {
        if (readRegion())
            return true;
        report(QStringLiteral("Ошибка чтения области из строки: %1"), in.lineNum());
    }
    return false;
}

// Objects

bool MifImport::readPoint()
{
    bool okX = false;
    bool okY = false;
    const double x = tokenToDouble(1, &okX);
    const double y = tokenToDouble(2, &okY);
    if (!okX || !okY)
        return false;
    points.append(DefPoint{ QString(), x, y });
    return true;
}

bool MifImport::readLine()
{
    double coordinates[4];
    for (int i = 0; i < 4; ++i) {
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
    const int count = tokenToInt(1, &ok);
    return ok && count >= 2 && readSub(count, false);
}

bool MifImport::readPlineMultiple()
{
    appendEmptyPolygon();
    bool ok = false;
    const int sectionCount = tokenToInt(2, &ok);
    if (!ok || sectionCount < 2 || in.atEnd())
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
    const int ringCount = tokenToInt(1, &ok);
    if (!ok)
        return false;
    if (in.atEnd() || ringCount < 1)
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
    if (in.atEnd() || count < 1)
        return count == 0;
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
