#include "survey/surveyor.h"

#include <QDir>
#include <QFileInfo>

#include <array>
#include <optional>

namespace {

/// Every word of a line is looked at by somebody up to this one.
constexpr size_t maxWords = 6;

std::string upper(std::string_view word)
{
    std::string result(word);
    for (char& c : result) {
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    }
    return result;
}

/// The words of a line.
struct Words {
    explicit Words(std::string_view line)
    {
        constexpr const char* space = " \t\v\f";
        while (count < maxWords) {
            const size_t first = line.find_first_not_of(space);
            if (first == std::string_view::npos)
                return;
            line.remove_prefix(first);
            const size_t length = std::min(line.find_first_of(space), line.size());
            words[count++] = line.substr(0, length);
            line.remove_prefix(length);
        }
    }

    std::string_view at(size_t index) const { return index < count ? words[index] : ""; }
    bool areNumbers(size_t first, size_t last) const
    {
        bool ok = true;
        for (size_t i = first; i <= last; ++i)
            ok = ok && isNumber(at(i));
        return ok;
    }

    std::array<std::string_view, maxWords> words;
    size_t count = 0;
};

bool isObjectKeyword(const std::string& keyword)
{
    for (const char* name : { "NONE", "POINT", "LINE", "PLINE", "REGION", "ARC", "TEXT", "RECT",
             "ROUNDRECT", "ELLIPSE", "MULTIPOINT", "COLLECTION" }) {
        if (keyword == name)
            return true;
    }
    return false;
}

bool isBuilt(const std::string& keyword)
{
    return keyword == "LINE" || keyword == "PLINE" || keyword == "REGION";
}

/// The survey of one pair of files.
class MifSurvey : private Surveyor {
public:
    using Surveyor::Surveyor;

    FileSurvey run()
    {
        if (m_text.isEmpty()) {
            addCause(Cause::EmptyFile, 0);
            stop();
            return m_survey;
        }
        if (!checkHeader())
            stop();
        else if (wantsMid())
            openMid();
        if (skipHeader())
            surveyObjects();
        else if (!m_survey.stopped)
            stopWithoutData();
        finish();
        return m_survey;
    }

private:
    bool wantsMid() const
    {
        return (m_options.readsPoints && m_options.searchPointDefs)
            || (m_options.readsObjects && m_options.searchObjectDefs);
    }

    void addMidCause(Cause cause, int line, const QString& detail = QString(), qint64 count = 0)
    {
        m_survey.causes.append({ cause, m_midName, line, detail, count });
    }

    bool checkHeader()
    {
        for (const char* keyword : { "VERSION", "CHARSET", "DELIMITER" }) {
            const Words words(m_lines.next());
            const std::string first = upper(words.at(0));
            if (first == keyword && first == "CHARSET")
                m_survey.declaredEncoding =
                    QString::fromLatin1(words.at(1).data(), static_cast<int>(words.at(1).size()))
                        .remove(QLatin1Char('"'));
            if (first == keyword && words.count == 2)
                continue;
            explainHeader(first, QString::fromLatin1(keyword));
            return false;
        }
        return true;
    }

    void explainHeader(const std::string& first, const QString& keyword)
    {
        const int line = m_lines.lineNumber();
        if (line == 1 && first.empty())
            addCause(Cause::BlankFirstLine, line);
        else if (first == "DELIMITER" && keyword == QLatin1String("DELIMITER"))
            addCause(Cause::Delimiter, line);
        else
            addCause(Cause::MifHeader, line, keyword.left(1) + keyword.mid(1).toLower());
    }

    bool skipHeader()
    {
        while (!m_lines.atEnd()) {
            if (upper(m_lines.next()) == "DATA")
                return true;
        }
        return false;
    }

    void stopWithoutData()
    {
        addCause(Cause::NoData, 0);
        stop();
    }

    void openMid()
    {
        m_midName = m_survey.fileName;
        m_midName.chop(1);
        m_midName.append(QLatin1Char('d'));
        if (QFileInfo(m_midName).isFile()) {
            m_midBytes = readBytes(m_midName);
            m_midText = asUtf8(m_midBytes);
            m_mid.emplace(view(m_midText));
            return;
        }
        stop();
        const QString other = midOfOtherCase();
        if (other.isEmpty())
            addMidCause(Cause::MidMissing, 0);
        else
            addMidCause(Cause::MidOtherCase, 0, other);
    }

    QString midOfOtherCase() const
    {
        const QFileInfo wanted(m_midName);
        for (const QString& name : wanted.dir().entryList(QDir::Files)) {
            if (name.compare(wanted.fileName(), Qt::CaseInsensitive) == 0)
                return name;
        }
        return {};
    }

    void surveyObjects()
    {
        while (!m_lines.atEnd()) {
            const Words words(m_lines.next());
            const std::string keyword = upper(words.at(0));
            if (isObjectKeyword(keyword))
                surveyObject(keyword, words);
        }
    }

    void surveyObject(const std::string& keyword, const Words& words)
    {
        KindCount& kind = m_survey.kinds[keyword];
        ++kind.count;
        if (m_survey.stopped)
            return;
        if (keyword == "COLLECTION") {
            addCause(Cause::Collection, m_lines.lineNumber());
            stop();
            return;
        }
        if (m_options.readsObjects && isBuilt(keyword)) {
            const bool ok = surveyShape(keyword, words);
            m_survey.stopped = !ok;
        } else if (m_options.readsPoints && keyword == "POINT" && !words.areNumbers(1, 2)) {
            addCause(Cause::BadObject, m_lines.lineNumber(), QStringLiteral("POINT"));
            stopPointPass();
        }
        if (!m_survey.stopped)
            takeMidRow();
        const bool used = (m_options.readsObjects && isBuilt(keyword))
            || (m_options.readsPoints && keyword == "POINT");
        if (!m_survey.stopped && used)
            ++kind.read;
    }

    void takeMidRow()
    {
        if (!m_mid)
            return;
        const bool atEnd = m_mid->atEnd();
        if (!m_mid->next().empty())
            return;
        addMidCause(atEnd ? Cause::MidTooShort : Cause::MidBlankRow, m_mid->lineNumber());
        stopPointPass();
    }

    bool surveyShape(const std::string& keyword, const Words& words)
    {
        const int line = m_lines.lineNumber();
        if (keyword == "LINE") {
            if (!words.areNumbers(1, 4))
                return failObject(keyword, line);
            m_survey.shapes.append(Shape::Line);
            return true;
        }
        const bool isRegion = keyword == "REGION";
        m_survey.shapes.append(isRegion ? Shape::Area : Shape::Line);
        const bool isMultiple = !isRegion && upper(words.at(1)) == "MULTIPLE";
        const size_t countIndex = isMultiple ? 2 : 1;
        if (words.count == countIndex) {
            addCause(Cause::CountOnNextLine, line, QString::fromStdString(keyword));
            return false;
        }
        const int count = toInt(words.at(countIndex), -1);
        if (isRegion)
            return surveyParts(keyword, count, 0, 3);
        return isMultiple
            ? surveyParts(keyword, count, 2, 2)
            : (count >= 2 ? surveyVertices(keyword, count) : failObject(keyword, line));
    }

    bool surveyParts(const std::string& keyword, int count, int least, int leastVertices)
    {
        if (count < least)
            return failObject(keyword, m_lines.lineNumber());
        for (int i = 0; i < count; ++i) {
            const std::string_view line = m_lines.next();
            const int vertices = toInt(line, -1);
            if (vertices < leastVertices)
                return line.empty() ? failAtBlankLine(keyword)
                                    : failObject(keyword, m_lines.lineNumber());
            if (!surveyVertices(keyword, vertices))
                return false;
        }
        return true;
    }

    bool surveyVertices(const std::string& keyword, int count)
    {
        for (int i = 0; i < count; ++i) {
            const Words words(m_lines.next());
            if (words.count == 0)
                return failAtBlankLine(keyword);
            if (words.count != 2 || !words.areNumbers(0, 1))
                return failObject(keyword, m_lines.lineNumber());
        }
        return true;
    }

    bool failAtBlankLine(const std::string& keyword)
    {
        if (m_lines.atEnd())
            return failObject(keyword, m_lines.lineNumber());
        addCause(Cause::BlankLine, m_lines.lineNumber());
        return false;
    }

    bool failObject(const std::string& keyword, int line)
    {
        addCause(Cause::BadObject, line, QString::fromStdString(keyword));
        return false;
    }

    void finish()
    {
        finishCounts();
        if (m_mid && !m_survey.stopped)
            judgeMidLength();
        judgeEncoding(m_survey, m_options, m_bytes + m_midBytes, m_midText);
    }

    void judgeMidLength()
    {
        qint64 extraRows = 0;
        while (!m_mid->atEnd())
            extraRows += m_mid->next().empty() ? 0 : 1;
        if (extraRows > 0)
            addMidCause(Cause::MidTooLong, 0, {}, extraRows);
    }

    QString m_midName;
    QByteArray m_midBytes;
    QByteArray m_midText;
    std::optional<LineCursor> m_mid;
};

} // namespace

FileSurvey surveyMif(const QString& fileName, const SurveyOptions& options)
{
    return MifSurvey(fileName, options).run();
}
