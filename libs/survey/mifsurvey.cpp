#include "survey/mifsurvey.h"

#include "import/midfile.h"
#include "import/mifkeywords.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <map>
#include <string>

namespace {

const char* const headerKeywords[] = { "Version", "Charset", "Delimiter" };
constexpr int headerLength = 3;

QStringList wordsOf(const QString& line)
{
    return line.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

TextView textView(std::string_view text)
{
    return { text.data(), static_cast<qsizetype>(text.size()) };
}

/// Adds the row to those of each delimiter that it has outside of quotes.
void countDelimiters(std::string_view row, std::map<char, qint64>& rowsWith)
{
    bool inQuotes = false;
    std::string_view known = "\t;,|";
    std::string seen;
    for (const char c : row) {
        inQuotes = inQuotes != (c == '"');
        if (!inQuotes && known.find(c) != std::string_view::npos
            && seen.find(c) == std::string::npos)
            seen += c;
    }
    for (const char c : seen)
        ++rowsWith[c];
}

/// The first word of a line.
TextView firstWord(TextView line)
{
    return line.trimmed().visit([](auto begin, auto end) {
        return TextView::between(
            begin, std::find_if(begin, end, [](auto unit) { return TextView::isSpace(unit); }));
    });
}

} // namespace

void MifSurvey::takeCensus(ByteLines& lines)
{
    while (lines.next()) {
        if (m_hasData)
            takeObjectLine(lines.line);
        else
            takeHeaderLine(lines.line, lines.number);
    }
    takeMidCensus();
}

void MifSurvey::takeObjectLine(std::string_view line)
{
    // Nearly all lines are vertices: only one that starts with a letter may start an object.
    const size_t start = line.find_first_not_of(" \t\v\f");
    if (start == std::string_view::npos || (line[start] | 0x20) < 'a' || (line[start] | 0x20) > 'z')
        return;
    // Bytes beyond ASCII behind it may be a space of another kind.
    size_t end = start;
    while (end < line.size() && line[end] > ' ')
        ++end;
    TextView word = textView(line.substr(start, end - start));
    const MifObjectKind* const kind = takeObjectKind(word);
    if (!kind)
        return;
    ++m_survey.kinds[kind->name.data()].count;
    ++m_objects;
}

void MifSurvey::takeHeaderLine(std::string_view line, int number)
{
    constexpr size_t maxLength = 1000;
    const QStringList words = wordsOf(textView(line.substr(0, maxLength)).toString());
    if (words.isEmpty())
        return;
    const auto is = [&words](const char* keyword) {
        return isMifKeyword(QStringView(words.first()), QLatin1String(keyword));
    };
    const QString value = words.value(1);
    if (words.size() == 1 && is("DATA")) {
        m_hasData = true;
    } else if (is("CHARSET") && number <= headerLength) {
        m_survey.declaredEncoding = QString(value).remove(QLatin1Char('"'));
    } else if (is("DELIMITER")) {
        const QString delimiter = QString(value).remove(QLatin1Char('"'));
        m_delimiter = delimiter.isEmpty() ? m_delimiter : delimiter.front().toLatin1();
    } else if (is("COLUMNS")) {
        m_columns = value.toInt();
    } else if (is("COORDSYS")) {
        m_survey.isInDegrees = value.compare(QLatin1String("Earth"), Qt::CaseInsensitive) == 0
            && words.value(2).compare(QLatin1String("Projection"), Qt::CaseInsensitive) == 0
            && words.value(3).remove(QLatin1Char(',')) == QLatin1String("1");
    }
}

void MifSurvey::takeMidCensus()
{
    constexpr int sampleRows = 1000;
    ByteLines rows;
    if (!wantsMid() || !open(rows, midFileName(m_survey.fileName)))
        return;
    std::map<char, qint64> rowsWith;
    while (rows.next()) {
        const std::string_view row = trimmed(rows.line);
        ++m_midRows;
        m_extraRows += m_midRows > m_objects && !row.empty() ? 1 : 0;
        if (m_midRows <= sampleRows)
            countDelimiters(row, rowsWith);
        takeDesignation(row);
    }
    judgeMidColumns(rowsWith);
}

void MifSurvey::judgeMidColumns(const std::map<char, qint64>& rowsWith)
{
    static constexpr struct {
        char delimiter;
        const char* name;
    } names[] = { { '\t', "табуляция" }, { ';', "точка с запятой" }, { ',', "запятая" },
        { '|', "вертикальная черта" } };
    const auto countOfRows = [&rowsWith](char delimiter) {
        const auto found = rowsWith.find(delimiter);
        return found == rowsWith.end() ? 0 : found->second;
    };
    const qint64 rows = std::min<qint64>(m_midRows, 1000);
    if (m_columns < 2 || rows == 0 || countOfRows(m_delimiter) * 2 > rows)
        return;
    for (const auto& row : names) {
        if (row.delimiter != m_delimiter && countOfRows(row.delimiter) * 10 >= rows * 9) {
            addCauseOf(midFileName(m_survey.fileName), Cause::MidDelimiter, 0,
                QString::fromUtf8(row.name));
            return;
        }
    }
}

void MifSurvey::explain(const ImportFailure& failure)
{
    switch (failure.kind) {
    case FailureKind::NotMif:
        explainHeader(failure.line);
        break;
    case FailureKind::MidNotOpened:
        explainMissingMid();
        break;
    case FailureKind::PointDesignation:
    case FailureKind::ObjectData:
    case FailureKind::ObjectDesignation:
        explainMidRow(failure.line);
        break;
    case FailureKind::Collection:
        addCause(Cause::Collection, failure.line);
        break;
    case FailureKind::PointCoordinates:
    case FailureKind::Line:
    case FailureKind::Polyline:
    case FailureKind::Region:
        explainObject(failure);
        break;
    case FailureKind::FileNotOpened:
    case FailureKind::NotDxf:
    case FailureKind::DxfEntity:
        break;
    }
}

void MifSurvey::explainHeader(int line)
{
    const QString text = placeOf(line).text;
    const TextView word = firstWord(QStringView(text));
    if (line == 1 && text.isEmpty())
        addCause(Cause::BlankFirstLine, line);
    else if (line == headerLength && isMifKeyword(word, QLatin1String("DELIMITER")))
        addCause(Cause::Delimiter, line);
    else if (line == headerLength)
        addCause(Cause::DelimiterMissing, line);
    else if (line <= headerLength)
        addCause(Cause::MifHeader, line, QLatin1String(headerKeywords[line - 1]));
}

void MifSurvey::explainMissingMid()
{
    const QString mid = midFileName(m_survey.fileName);
    const QFileInfo wanted(mid);
    if (wanted.exists()) {
        addCauseOf(mid, Cause::MidUnreadable, 0);
        return;
    }
    for (const QString& name : wanted.dir().entryList(QDir::Files)) {
        if (name.compare(wanted.fileName(), Qt::CaseInsensitive) == 0) {
            addCauseOf(mid, Cause::MidOtherCase, 0, name);
            return;
        }
    }
    addCauseOf(mid, Cause::MidMissing, 0);
}

void MifSurvey::explainMidRow(int row)
{
    addCauseOf(midFileName(m_survey.fileName),
        row > m_midRows ? Cause::MidTooShort : Cause::MidBlankRow, row);
}

void MifSurvey::explainObject(const ImportFailure& failure)
{
    const Place place = placeOf(failure.line);
    const QStringList words = wordsOf(place.text);
    const bool isMultiple =
        words.size() > 1 && isMifKeyword(QStringView(words.at(1)), QLatin1String("MULTIPLE"));
    const bool hasParts =
        failure.kind == FailureKind::Polyline || failure.kind == FailureKind::Region;
    if (hasParts && failure.line == failure.entityLine && words.size() == (isMultiple ? 2 : 1))
        addCause(Cause::CountOnNextLine, failure.line, failure.entity);
    else if (place.text.isEmpty() && !place.isBlankToEnd)
        addCause(Cause::BlankLine, failure.line, {}, place.blankLines);
    else
        addCause(Cause::BadObject, failure.line, failure.entity);
}

void MifSurvey::judge()
{
    const bool isWhole = isReadWhole();
    if (isWhole && !m_hasData)
        addCause(Cause::NoData, 0);
    if (isWhole && m_hasData && m_extraRows > 0)
        addCauseOf(midFileName(m_survey.fileName), Cause::MidTooLong, 0, {}, m_extraRows);
    judgeLeftOut();
}

void MifSurvey::judgeLeftOut()
{
    if (!readsObjects() || countOf("REGION") + countOf("PLINE") + countOf("LINE") == 0)
        return;
    QStringList names;
    qint64 count = 0;
    for (const char* kind : { "ARC", "TEXT", "RECT", "ROUNDRECT", "ELLIPSE", "MULTIPOINT" }) {
        if (countOf(kind) == 0)
            continue;
        count += countOf(kind);
        names.append(QStringLiteral("%1 - %2").arg(QLatin1String(kind)).arg(countOf(kind)));
    }
    if (count > 0)
        addCause(Cause::LeftOut, 0, names.join(QLatin1String(", ")), count);
}
