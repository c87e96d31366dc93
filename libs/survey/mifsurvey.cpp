#include "survey/mifsurvey.h"

#include "import/midfile.h"
#include "import/mifkeywords.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

const char* const headerKeywords[] = { "Version", "Charset", "Delimiter" };
constexpr int headerLength = 3;

QStringList wordsOf(const QString& line)
{
    return line.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
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

QString MifSurvey::companionFile() const
{
    return wantsMid() ? midFileName(m_survey.fileName) : QString();
}

void MifSurvey::takeCensus(LineReader& in)
{
    while (!in.atEnd()) {
        const TextView line = in.readLine();
        if (in.lineNum() <= headerLength)
            takeHeaderLine(line);
        if (!m_hasData) {
            m_hasData = line.trimmed().equalsIgnoringCase(QLatin1String("DATA"));
            continue;
        }
        if (const MifObjectKind* const kind = mifObjectKind(firstWord(line))) {
            ++m_survey.kinds[kind->name.data()].count;
            ++m_objects;
        }
    }
    takeMidCensus();
}

void MifSurvey::takeHeaderLine(TextView line)
{
    const QStringList words = wordsOf(line.toString());
    if (words.size() > 1 && isMifKeyword(QStringView(words.first()), QLatin1String("CHARSET")))
        m_survey.declaredEncoding = QString(words.at(1)).remove(QLatin1Char('"'));
}

void MifSurvey::takeMidCensus()
{
    LineReader in;
    if (!wantsMid() || !open(in, companionFile()))
        return;
    while (!in.atEnd()) {
        const TextView row = in.readLine().trimmed();
        ++m_midRows;
        m_extraRows += m_midRows > m_objects && !row.isEmpty() ? 1 : 0;
        takeDesignation(row);
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
        addCause(Cause::BlankLine, failure.line);
    else
        addCause(Cause::BadObject, failure.line, failure.entity);
}

void MifSurvey::judge()
{
    const bool isWhole = isReadWhole();
    if (isWhole && !m_hasData)
        addCause(Cause::NoData, 0);
    if (isWhole && m_hasData && m_extraRows > 0)
        addCauseOf(companionFile(), Cause::MidTooLong, 0, {}, m_extraRows);
}
