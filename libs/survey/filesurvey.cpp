#include "survey/filesurvey.h"

#include "survey/encodingguess.h"

#include <QFile>
#include <QStringList>
#include <QTextCodec>

#include <algorithm>
#include <charconv>

namespace {

bool readsAlike(const QTextCodec* likely, const QTextCodec* chosen, const QByteArray& texts)
{
    if (!likely || !chosen)
        return false;
    return likely == chosen || likely->toUnicode(texts) == chosen->toUnicode(texts);
}

/// from_chars, but for a leading plus sign, which the readers take.
template <typename Number>
bool convert(std::string_view text, Number& number)
{
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end;
}

} // namespace

QByteArray readBytes(const QString& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void judgeEncoding(FileSurvey& survey, const SurveyOptions& options, const QByteArray& bytes,
    const QByteArray& texts)
{
    // A reader believes a byte-order mark more than the chosen encoding.
    survey.likelyEncoding = codecOfMark(view(bytes));
    if (!survey.likelyEncoding.isEmpty())
        return;
    survey.likelyEncoding = likelyCodec(view(bytes));
    const bool isUtf16 = survey.likelyEncoding.startsWith("UTF-16");
    if (survey.likelyEncoding.isEmpty() || (!isUtf16 && EncodingGuess(view(texts)).isAscii()))
        return;
    const QTextCodec* likely = QTextCodec::codecForName(survey.likelyEncoding);
    const QTextCodec* chosen = QTextCodec::codecForName(options.encoding);
    survey.encodingMatches = readsAlike(likely, chosen, isUtf16 ? bytes : texts);
    if (!survey.encodingMatches) {
        survey.causes.append(
            { Cause::Encoding, survey.fileName, 0, QString::fromLatin1(survey.likelyEncoding), 0 });
    }
}

void explainEmptyResult(FileSurvey& survey)
{
    const bool explained = std::any_of(survey.causes.cbegin(), survey.causes.cend(),
        [](const FoundCause& found) { return found.cause == Cause::BlockInsertsOnly; });
    if (survey.stopped || explained)
        return;
    if (survey.kinds.empty()) {
        survey.causes.append({ Cause::NothingInside, survey.fileName, 0, {}, 0 });
        return;
    }
    QStringList kinds;
    for (const auto& [name, kind] : survey.kinds)
        kinds.append(QStringLiteral("%1 - %2").arg(QString::fromStdString(name)).arg(kind.count));
    survey.causes.append({ Cause::NoObjects, survey.fileName, 0,
        QStringLiteral("в нём только ") + kinds.join(QLatin1String(", ")), 0 });
}

bool isNumber(std::string_view text)
{
    double number = 0;
    return convert(text, number);
}

double numberOf(std::string_view text, double absent)
{
    double number = 0;
    return convert(text, number) ? number : absent;
}

int toInt(std::string_view text, int absent)
{
    int number = 0;
    return convert(text, number) ? number : absent;
}
