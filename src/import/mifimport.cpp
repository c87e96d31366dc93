#include "import/mifimport.h"

#include "import/number.h"

#include <algorithm>

namespace {

/// A LINE has the most tokens that are looked at: the keyword and four coordinates.
constexpr int maxTokens = 5;

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
    for (const auto& object : objects) {
        if (token.size() == object.name.size() && isKeyword(token, object.name))
            return object.keyword;
    }
    return Keyword::None;
}

// Lines

bool MifImport::readTokenizeMifLine(bool split)
{
    readTextLine(line);
    if (split)
        tokenize();
    return !QStringView(line).trimmed().isEmpty();
}

void MifImport::tokenize()
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
    *count = QStringView(line).trimmed().toString().toInt(&ok);
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
                QStringLiteral("Ошибка. Файл %1 не соответствует формату MIF"), file.fileName());
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
    QString name = file.fileName();
    // Only the last letter changes, in lower case whatever the case of the name.
    name.chop(1);
    name.append(QLatin1Char('d'));
    midFile.setFileName(name);
    if (!midFile.open(QIODevice::ReadOnly | QIODevice::Text)) {
        reportFile(QStringLiteral("Ошибка открытия MID файла %1"), name);
        return false;
    }
    midIn.setDevice(&midFile);
    midIn.setCodec(codec);
    midLineNum = 0;
    return true;
}

bool MifImport::readMidLine()
{
    if (!midIn.readLineInto(&midLine))
        midLine = QString();
    ++midLineNum;
    return !QStringView(midLine).trimmed().isEmpty();
}

bool MifImport::readMidDef(QString* def)
{
    if (!midFile.isOpen())
        return true;
    if (!readMidLine())
        return false;
    if (def)
        *def = extractDef(QStringView(midLine).trimmed());
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
    midIn.setDevice(nullptr);
    midFile.close();
    return done;
}

bool MifImport::scanObjects(ObjectHandler handle)
{
    bool inData = false;
    while (!in.atEnd() && !inData) {
        readTokenizeMifLine(false);
        inData =
            QStringView(line).trimmed().compare(QLatin1String("DATA"), Qt::CaseInsensitive) == 0;
    }
    while (!in.atEnd()) {
        if (!readTokenizeMifLine(true))
            continue;
        const Keyword keyword = keywordOf(tokens.first());
        if (keyword == Keyword::None)
            continue;
        if (keyword == Keyword::Collection) {
            report(QStringLiteral("Ошибка в стоке %1. Коллекции в MIF файлах не поддерживаются."),
                lineNum);
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
    report(QStringLiteral("Ошибка чтения данных объекта из строки: %1"), midLineNum);
    return false;
}

bool MifImport::loadPoint(Keyword keyword)
{
    if (keyword != Keyword::Point)
        return skipObject();
    if (!readPoint()) {
        report(QStringLiteral("Ошибка чтения координат точки из строки: %1"), lineNum);
        return false;
    }
    QString def;
    if (!readMidDef(&def)) {
        report(QStringLiteral("Ошибка чтения обозначения точки из строки: %1"), midLineNum);
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
        report(QStringLiteral("Ошибка чтения обозначения объекта из строки: %1"), midLineNum);
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
        report(QStringLiteral("Ошибка чтения линии из строки: %1"), lineNum);
    } else if (keyword == Keyword::Pline) {
        const bool multiple =
            tokens.size() > 1 && isKeyword(tokens.at(1), QLatin1String("MULTIPLE"));
        if (multiple ? readPlineMultiple() : readPline())
            return true;
        report(QStringLiteral("Ошибка чтения полилинии из строки: %1"), lineNum);
    } else {
        if (readRegion())
            return true;
        report(QStringLiteral("Ошибка чтения области из строки: %1"), lineNum);
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
    readTokenizeMifLine(true);
    bool okX = false;
    bool okY = false;
    const double x = tokenToDouble(0, &okX);
    const double y = tokenToDouble(1, &okY);
    if (tokens.size() != 2 || !okX || !okY)
        return false;
    appendVert(x, y, closing);
    return true;
}
