#include "survey/surveyor.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

constexpr qint64 blockSize = 1 << 20;

std::string_view view(const QByteArray& bytes)
{
    return { bytes.constData(), static_cast<size_t>(bytes.size()) };
}

QByteArray startOf(const QString& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.read(EncodingGuess::sampleSize) : QByteArray();
}

void addBytes(EncodingGuess& guess, const QString& fileName)
{
    QFile file(fileName);
    if (!QFileInfo(fileName).isFile() || !file.open(QIODevice::ReadOnly))
        return;
    for (QByteArray block = file.read(blockSize); !block.isEmpty(); block = file.read(blockSize))
        guess.add(view(block));
}

} // namespace

Surveyor::Surveyor(const ImportOptions& options, FileRole role, const ImportRun& run)
    : m_options(options)
    , m_role(role)
    , m_run(run)
{
    m_survey.fileName = role == FileRole::Objects ? options.objectFileName : options.pointFileName;
}

FileSurvey Surveyor::survey()
{
    if (QFileInfo(m_survey.fileName).size() == 0) {
        addCause(Cause::EmptyFile, 0);
        return m_survey;
    }
    guessEncoding();
    LineReader in;
    if (open(in, m_survey.fileName))
        takeCensus(in);
    in.close();
    countReads();
    explainFailures();
    judge();
    if (!m_survey.encodingMatches)
        addCause(Cause::Encoding, 0, QString::fromLatin1(m_survey.likelyEncoding));
    return m_survey;
}

void Surveyor::guessEncoding()
{
    const QByteArray start = startOf(m_survey.fileName);
    const QByteArray mark = codecOfMark(view(start));
    const QByteArray wide = mark.isEmpty() ? utf16WithoutMark(view(start)) : mark;
    m_survey.likelyEncoding = wide.isEmpty() ? guessFromBytes() : wide;
    const bool isAsciiFile = m_survey.likelyEncoding.isEmpty();
    m_codec = QTextCodec::codecForName(isAsciiFile ? "ISO-8859-1" : m_survey.likelyEncoding);
    const QTextCodec* const chosen = QTextCodec::codecForName(m_options.encoding);
    // A reader believes a byte-order mark more than the chosen encoding.
    if (!mark.isEmpty() || isAsciiFile || chosen == m_codec)
        return;
    if (wide.isEmpty())
        m_doubted = chosen;
    else
        m_survey.encodingMatches = chosen && chosen->toUnicode(start) == m_codec->toUnicode(start);
}

QByteArray Surveyor::guessFromBytes() const
{
    EncodingGuess guess;
    addBytes(guess, m_survey.fileName);
    addBytes(guess, companionFile());
    return guess.codecName();
}

bool Surveyor::open(LineReader& in, const QString& fileName) const
{
    return QFileInfo(fileName).isFile() && in.open(fileName, m_codec);
}

void Surveyor::takeDesignation(TextView text)
{
    if (!m_doubted || !m_survey.encodingMatches || text.isAscii())
        return;
    const QString meant = text.toString();
    m_survey.encodingMatches = m_doubted->toUnicode(m_codec->fromUnicode(meant)) == meant;
}

Surveyor::Place Surveyor::placeOf(int line) const
{
    Place place;
    LineReader in;
    if (!open(in, m_survey.fileName))
        return place;
    while (!in.atEnd() && in.lineNum() < line - 1)
        in.readLine();
    place.exists = !in.atEnd();
    place.text = in.readLine().trimmed().toString();
    place.isBlankToEnd = place.text.isEmpty();
    while (place.isBlankToEnd && !in.atEnd())
        place.isBlankToEnd = in.readLine().trimmed().isEmpty();
    return place;
}

void Surveyor::addCause(Cause cause, int line, const QString& detail, qint64 count)
{
    addCauseOf(m_survey.fileName, cause, line, detail, count);
}

void Surveyor::addCauseOf(
    const QString& fileName, Cause cause, int line, const QString& detail, qint64 count)
{
    m_survey.causes.append({ cause, fileName, line, detail, count });
}

KindCount Surveyor::kindOf(const char* name) const
{
    const auto found = m_survey.kinds.find(name);
    return found == m_survey.kinds.end() ? KindCount() : found->second;
}

bool Surveyor::readsPoints() const
{
    const bool isPointFile = m_role == FileRole::Points || m_options.pointFileName.isEmpty();
    return isPointFile && m_options.searchPointDefs;
}

bool Surveyor::concerns(const ImportMessage& message) const
{
    return message.pass == ImportPass::Points ? readsPoints() : readsObjects();
}

bool Surveyor::isReadWhole() const
{
    return !(readsPoints() && m_run.stopped(true)) && !(readsObjects() && m_run.stopped(false));
}

void Surveyor::explainFailures()
{
    QStringList explained;
    for (const ImportMessage& message : m_run.messages) {
        // Both passes may come upon the same.
        if (!message.failure || !concerns(message) || explained.contains(message.text))
            continue;
        explained.append(message.text);
        explain(*message.failure);
    }
}

void Surveyor::countReads()
{
    for (auto& [name, kind] : m_survey.kinds) {
        kind.read = (readsPoints() ? m_run.pointsRead.of(name) : 0)
            + (readsObjects() ? m_run.objectsRead.of(name) : 0);
    }
}
