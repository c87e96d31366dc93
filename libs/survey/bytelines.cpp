#include "survey/bytelines.h"

#include "survey/encodingguess.h"

#include <QFileInfo>

namespace {

constexpr int blockSize = 1 << 18;
/// Lines longer than this are cut: nothing that a census looks for is as long.
constexpr int maxLine = 1 << 20;

} // namespace

ByteLines::ByteLines() = default;
ByteLines::~ByteLines() = default;

bool ByteLines::open(const QString& fileName, QTextCodec* wide, EncodingGuess* guess)
{
    m_file.setFileName(fileName);
    if (!QFileInfo(fileName).isFile() || !m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return false;
    m_guess = guess;
    m_decoder.reset(wide ? wide->makeDecoder() : nullptr);
    m_buffer.reserve(blockSize + maxLine);
    return true;
}

bool ByteLines::readOn()
{
    // What is left of the block is the start of a line; the part that was looked at has no end.
    int searched = m_buffer.size() - m_start;
    while (fill()) {
        const int end = m_buffer.indexOf('\n', m_start + searched);
        if (end >= 0) {
            take(m_buffer.constData() + m_start, static_cast<size_t>(end - m_start));
            m_start = end + 1;
            return true;
        }
        searched = m_buffer.size() - m_start;
        if (searched > maxLine) {
            m_buffer.truncate(m_start + maxLine);
            searched = maxLine;
        }
    }
    if (m_start == m_buffer.size())
        return false;
    take(m_buffer.constData() + m_start, static_cast<size_t>(m_buffer.size() - m_start));
    m_start = m_buffer.size();
    return true;
}

bool ByteLines::fill()
{
    m_buffer.remove(0, m_start);
    m_start = 0;
    const int kept = m_buffer.size();
    if (m_decoder) {
        const QByteArray block = m_file.read(blockSize);
        m_buffer += m_decoder->toUnicode(block).toUtf8();
        return !block.isEmpty();
    }
    m_buffer.resize(kept + blockSize);
    const qint64 size = m_file.read(m_buffer.data() + kept, blockSize);
    m_buffer.resize(kept + static_cast<int>(std::max<qint64>(size, 0)));
    if (m_guess)
        m_guess->add({ m_buffer.constData() + kept, static_cast<size_t>(m_buffer.size() - kept) });
    return size > 0;
}
