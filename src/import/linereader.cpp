#include "import/linereader.h"

#include <utility>

namespace {

/// Characters taken from the stream at once: what the stream itself reads from its device.
constexpr int chunkSize = 16384;
/// No text codec leaves more bytes than this undecoded at the end of a file.
constexpr qint64 longestSequence = 8;

} // namespace

bool LineReader::open(const QString& fileName, QTextCodec* codec)
{
    m_file.setFileName(fileName);
    if (!m_file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    m_in.setDevice(&m_file);
    m_in.setCodec(codec);
    m_lineNum = 0;
    m_linesBefore = 0;
    forget();
    // Where the device is read one block at a time, a last block that decodes to nothing makes
    // one more, empty line. Chunks would run over it.
    const qint64 lastBlock = m_file.size() % chunkSize;
    m_byLine = lastBlock > 0 && lastBlock <= longestSequence;
    return true;
}

void LineReader::close()
{
    m_in.setDevice(nullptr);
    m_file.close();
}

void LineReader::forget()
{
    m_chunk.clear();
    m_pos = 0;
}

void LineReader::rewind()
{
    m_file.seek(0);
    m_in.seek(0);
    m_linesBefore = m_lineNum;
    forget();
}

bool LineReader::atEnd() const
{
    return m_pos == m_chunk.size() && m_in.atEnd();
}

QStringView LineReader::readLine()
{
    ++m_lineNum;
    if (m_byLine)
        return readLineByLine();
    const QStringView rest = QStringView(m_chunk).mid(m_pos);
    const auto length = rest.indexOf(QLatin1Char('\n'));
    if (length < 0)
        return readLineAcrossChunks();
    m_pos += static_cast<int>(length) + 1;
    return rest.left(length);
}

QStringView LineReader::readLineByLine()
{
    std::swap(m_line, m_previousLine);
    return m_in.readLineInto(&m_line) ? QStringView(m_line) : QStringView();
}

QStringView LineReader::readLineAcrossChunks()
{
    std::swap(m_line, m_previousLine);
    m_line.resize(0);
    m_line.append(QStringView(m_chunk).mid(m_pos));
    m_previousChunk = std::move(m_chunk);
    for (;;) {
        m_chunk = m_in.read(chunkSize);
        m_pos = 0;
        if (m_chunk.isEmpty())
            return m_line.isEmpty() ? QStringView() : QStringView(m_line);
        const int length = m_chunk.indexOf(QLatin1Char('\n'));
        m_pos = length < 0 ? m_chunk.size() : length + 1;
        m_line.append(QStringView(m_chunk).left(length < 0 ? m_chunk.size() : length));
        if (length >= 0)
            return m_line;
    }
}
