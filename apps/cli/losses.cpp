#include "losses.h"

#include <QCommandLineParser>

#include <algorithm>
#include <iterator>

namespace {

/// What somebody who has the result must know of; the rest is told by a check.
constexpr Cause losses[] = { Cause::EmptyFile, Cause::NothingInside, Cause::NoObjects,
    Cause::NoData, Cause::BlockInsertsOnly, Cause::MTextOnly, Cause::LeftOut, Cause::ClosedFlag,
    Cause::Bulges, Cause::Mesh, Cause::PaperSpace, Cause::MidDelimiter, Cause::Encoding,
    Cause::Degrees, Cause::Axes };

bool isLoss(const FoundCause& found)
{
    return std::find(std::begin(losses), std::end(losses), found.cause) != std::end(losses);
}

} // namespace

QList<QCommandLineOption> tellingOptions()
{
    return {
        { QStringLiteral("strict"), QStringLiteral("Считать ошибкой и то, что прочитано не всё.") },
        { { QStringLiteral("q"), QStringLiteral("quiet") },
            QStringLiteral("Сообщать только об ошибках.") },
        { { QStringLiteral("v"), QStringLiteral("verbose") },
            QStringLiteral("Сообщать и то, что делать.") },
    };
}

Telling readTelling(const QCommandLineParser& parser)
{
    const Telling telling{ parser.isSet(QStringLiteral("quiet")),
        parser.isSet(QStringLiteral("verbose")), parser.isSet(QStringLiteral("strict")) };
    if (telling.quiet && telling.verbose)
        throw Failure{ WrongUsage, QStringLiteral("-q и -v вместе не указывают") };
    return telling;
}

Losses::Losses(const ImportTask& task, const Telling& telling)
    : m_telling(telling)
{
    if (!telling.quiet || telling.strict)
        m_survey.emplace(*task.format, task.options);
}

bool Losses::tell(const ImportRun& run, const GeometryInfo* columns)
{
    if (!m_survey)
        return true;
    bool complete = true;
    for (const FileSurvey& survey : m_survey->finish(run, columns)) {
        for (const FoundCause& found : survey.causes) {
            if (!isLoss(found))
                continue;
            complete = false;
            const QString word =
                m_telling.strict ? QStringLiteral("ошибка: ") : QStringLiteral("внимание: ");
            printMessage(found.fileName, word + causeText(found));
            if (m_telling.verbose)
                printMessage(found.fileName, QStringLiteral("что делать: ") + remedyText(found));
        }
    }
    return complete || !m_telling.strict;
}

void resolveEncoding(ImportTask& task, const Telling& telling)
{
    if (task.options.encoding != "auto")
        return;
    QByteArray encoding = likelyEncoding(*task.format, task.fileName());
    if (encoding.isEmpty() && !task.options.pointFileName.isEmpty())
        encoding = likelyEncoding(*task.format, task.options.pointFileName);
    task.options.encoding = encoding.isEmpty() ? systemEncoding() : encoding;
    if (!telling.quiet && !encoding.isEmpty())
        printMessage(
            task.fileName(), QStringLiteral("кодировка: ") + QString::fromLatin1(encoding));
}
