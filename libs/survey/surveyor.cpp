#include "survey/surveyor.h"

#include "survey/filekind.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace {

/// So many bytes of designations show whether an encoding reads them.
constexpr int designationSample = 1 << 16;

std::string_view view(const QByteArray& bytes)
{
    return { bytes.constData(), static_cast<size_t>(bytes.size()) };
}

QByteArray startOf(const QString& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.read(EncodingGuess::sampleSize) : QByteArray();
}

} // namespace

Surveyor::Surveyor(const Format& format, const ImportOptions& options, FileRole role)
    : m_format(format)
    , m_options(options)
    , m_role(role)
{
    m_survey.fileName = role == FileRole::Objects ? options.objectFileName : options.pointFileName;
}

void Surveyor::look()
{
    if (QFileInfo(m_survey.fileName).size() == 0) {
        addCause(Cause::EmptyFile, 0);
        return;
    }
    if (isOfOtherKind())
        return;
    lookAtStart();
    ByteLines lines;
    if (open(lines, m_survey.fileName))
        takeCensus(lines);
    tellEncoding();
    m_isTaken = true;
}

FileSurvey Surveyor::judged(const ImportRun& run)
{
    if (!m_isTaken)
        return m_survey;
    m_run = &run;
    countReads();
    explainFailures();
    judge();
    if (!m_survey.encodingMatches)
        addCause(Cause::Encoding, 0, QString::fromLatin1(m_survey.likelyEncoding));
    return m_survey;
}

bool Surveyor::isOfOtherKind()
{
    const QByteArray start = startOf(m_survey.fileName);
    const std::optional<FileKind> kind = fileKindOf(view(start));
    if (!kind || kind->isOf(m_format))
        return false;
    addCause(kind->isBinaryDrawing ? Cause::NotText : Cause::OtherFormat, 0,
        QString::fromUtf8(kind->name));
    return true;
}

void Surveyor::lookAtStart()
{
    const QByteArray start = startOf(m_survey.fileName);
    m_mark = codecOfMark(view(start));
    const QByteArray wide = m_mark.isEmpty() ? utf16WithoutMark(view(start)) : m_mark;
    m_survey.likelyEncoding = wide;
    m_codec = wide.isEmpty() ? nullptr : QTextCodec::codecForName(wide);
    m_wide = wide == "UTF-8" ? nullptr : m_codec;
}

void Surveyor::tellEncoding()
{
    const bool isWide = m_wide != nullptr;
    if (m_survey.likelyEncoding.isEmpty())
        m_survey.likelyEncoding = m_guess.codecName();
    const bool isAsciiFile = m_survey.likelyEncoding.isEmpty();
    m_codec = QTextCodec::codecForName(isAsciiFile ? "ISO-8859-1" : m_survey.likelyEncoding);
    const QTextCodec* const chosen = QTextCodec::codecForName(m_options.encoding);
    // A reader believes a byte-order mark more than the chosen encoding.
    if (!m_mark.isEmpty() || isAsciiFile || chosen == m_codec || !chosen)
        return;
    const QByteArray sample = isWide ? startOf(m_survey.fileName) : m_designations;
    m_survey.encodingMatches = chosen->toUnicode(sample) == m_codec->toUnicode(sample);
}

bool Surveyor::open(LineReader& in, const QString& fileName) const
{
    return QFileInfo(fileName).isFile() && in.open(fileName, m_codec);
}

bool Surveyor::open(ByteLines& lines, const QString& fileName)
{
    return lines.open(fileName, m_wide, &m_guess);
}

void Surveyor::takeDesignation(std::string_view text)
{
    const auto isHigh = [](char c) { return static_cast<unsigned char>(c) >= 0x80; };
    const int room = designationSample - m_designations.size();
    if (room <= 0 || std::none_of(text.begin(), text.end(), isHigh))
        return;
    m_designations.append(text.data(), std::min(static_cast<int>(text.size()), room));
    m_designations.append('\n');
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
    if (!place.isBlankToEnd)
        return place;
    place.blankLines = 1;
    qint64 blankSince = 0;
    while (!in.atEnd()) {
        if (in.readLine().trimmed().isEmpty()) {
            ++blankSince;
            continue;
        }
        place.isBlankToEnd = false;
        place.blankLines += std::exchange(blankSince, 0);
    }
    return place;
}

void Surveyor::addCause(Cause cause, int line, const QString& detail, qint64 count)
{
    addCauseOf(m_survey.fileName, cause, line, detail, count);
}

void Surveyor::addCauseOf(
    const QString& fileName, Cause cause, int line, const QString& detail, qint64 count)
{
    m_survey.causes.append({ cause, fileName, line, detail, count, m_survey.fileName });
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
    return !(readsPoints() && m_run->stopped(true)) && !(readsObjects() && m_run->stopped(false));
}

void Surveyor::explainFailures()
{
    QStringList explained;
    for (const ImportMessage& message : m_run->messages) {
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
        kind.read = (readsPoints() ? m_run->pointsRead.of(name) : 0)
            + (readsObjects() ? m_run->objectsRead.of(name) : 0);
    }
}
