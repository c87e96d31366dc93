#include "import/linereader.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

namespace {

/// What QTextStream reads from its device at once. Where a character is cut in two by the end of
/// a block, what becomes of it may depend on this.
constexpr int blockSize = 16384;
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr int utf8Mib = 106;

bool isHigh(char c)
{
    return static_cast<signed char>(c) < 0;
}

/// Passes over stretches of bytes none of which has a mark. Nothing ends the inner loop early, so
/// that many bytes are looked at in one step. The byte behind a stretch may be looked at, too.
template <int stretch, typename Mark>
const char* skipStretches(const char* begin, const char* end, Mark mark)
{
    const char* it = begin;
    for (; end - it > stretch; it += stretch) {
        uchar marks = 0;
        for (int i = 0; i < stretch; ++i)
            marks = static_cast<uchar>(marks | mark(it + i));
        if (marks != 0)
            break;
    }
    return it;
}

/// The first byte that is no ASCII, or a carriage return that is not before a line feed; `end`
/// where there is none. Where there are no carriage returns less has to be looked at.
const char* findSpecial(const char* begin, const char* end, bool hasReturns)
{
    constexpr uchar highBit = 0x80;
    const auto high = [](const char* byte) { return static_cast<uchar>(*byte) & highBit; };
    const auto highOrAlone = [high](const char* byte) {
        const bool isAlone = (byte[0] == '\r') & (byte[1] != '\n');
        return high(byte) | isAlone;
    };
    const char* it = hasReturns ? skipStretches<64>(begin, end, highOrAlone)
                                : skipStretches<8>(skipStretches<64>(begin, end, high), end, high);
    const auto isSpecial = [end](const char* byte) {
        return isHigh(*byte) || (*byte == '\r' && (byte + 1 == end || byte[1] != '\n'));
    };
    while (it != end && !isSpecial(it))
        ++it;
    return it;
}

const char* findLineFeed(const char* begin, const char* end)
{
    return static_cast<const char*>(std::memchr(begin, '\n', static_cast<size_t>(end - begin)));
}

const char16_t* findLineFeed(const char16_t* begin, const char16_t* end)
{
    return std::find(begin, end, u'\n');
}

TextView withoutCarriageReturn(TextView line)
{
    const bool ends = !line.isEmpty() && line.ascii()[line.size() - 1] == '\r';
    return ends ? TextView(line.ascii(), line.size() - 1) : line;
}

/// Whether a piece of the block, or one with the line feed behind it, is the same when decoded.
bool isPlain(TextView piece, bool endsLine)
{
    const char* const end = piece.ascii() + piece.size() + (endsLine ? 1 : 0);
    return findSpecial(piece.ascii(), end, true) == end;
}

} // namespace

TextView LineReader::Line::view() const
{
    return isDecoded ? TextView(QStringView(characters))
                     : TextView(bytes.constData(), bytes.size());
}

/// Keeps the memory for the next line, unless this one was far longer than lines are.
void LineReader::Line::clear()
{
    constexpr int usualSize = 256;
    if (characters.capacity() != usualSize) {
        characters = QString();
        characters.reserve(usualSize);
    }
    characters.resize(0);
    bytes.clear();
    isDecoded = false;
}

bool LineReader::open(const QString& fileName, QTextCodec* codec)
{
    m_file.setFileName(fileName);
    if (!m_file.open(QIODevice::ReadOnly))
        return false;
    m_codec = codec;
    m_codecIsChosen = false;
    m_lineNum = 0;
    start();
    return true;
}

void LineReader::close()
{
    m_file.close();
}

void LineReader::rewind()
{
    m_file.seek(0);
    start();
}

void LineReader::seek(qint64 position, int linesBefore)
{
    const qint64 inBlock = position % blockSize;
    const int linesOfEarlierRuns = m_linesBefore;
    m_file.seek(position - inBlock);
    start();
    m_blockEnd = position - inBlock;
    m_lineStart = position;
    m_linesBefore = linesOfEarlierRuns;
    m_lineNum = linesOfEarlierRuns + linesBefore;
    m_block = 1 - m_block;
    if (!readBlock())
        return;
    const QByteArray& bytes = m_blocks[m_block].bytes;
    m_rest = TextView(bytes.constData() + inBlock, bytes.size() - inBlock);
    stashRest();
}

void LineReader::start()
{
    m_linesBefore = m_lineNum;
    m_blockEnd = 0;
    m_lineStart = 0;
    m_state = std::make_unique<QTextCodec::ConverterState>();
    m_isAtStart = true;
    m_fileHasEnded = false;
    m_rest = TextView();
    m_plainSize = 0;
    nextLine();
}

bool LineReader::isAtEndOfFile() const
{
    return m_lines[m_line].isEmpty() && (m_fileHasEnded || m_file.atEnd());
}

TextView LineReader::readAnyLine()
{
    ++m_lineNum;
    if (!m_rest.isEmpty() || fill())
        return completeLine(takePiece());
    const Line& last = m_lines[m_line];
    m_lineStart = m_blockEnd;
    nextLine();
    return last.isEmpty() ? TextView() : last.view();
}

void LineReader::skipAnyLine()
{
    if (m_rest.isEmpty() || !m_lines[m_line].isUntouched()) {
        readAnyLine();
        return;
    }
    ++m_lineNum;
    takePiece();
    stashRest();
}

std::string_view LineReader::readBytes()
{
    if (!m_isSingleByte || m_rest.isEmpty() || !m_lines[m_line].isUntouched())
        return {};
    const char* const begin = m_rest.ascii();
    const char* const lineFeed = findLineFeed(begin, begin + m_rest.size());
    const TextView piece = withoutCarriageReturn(TextView::between(begin, lineFeed));
    const auto size = static_cast<size_t>(piece.size());
    if (std::memchr(begin, '\r', size))
        return {};
    ++m_lineNum;
    const qsizetype taken = lineFeed + 1 - begin;
    m_rest = TextView(lineFeed + 1, m_rest.size() - taken);
    m_plainSize = std::max<qsizetype>(m_plainSize - taken, 0);
    if (lineFeed == m_lastLineFeed)
        stashRest();
    return { begin, size };
}

/// Takes the bytes or characters up to the next line feed from the block, and the line feed too.
TextView LineReader::takePiece()
{
    return m_rest.visit([this](auto begin, auto end) {
        const auto lineFeed = findLineFeed(begin, end);
        m_rest = TextView::between(lineFeed + 1, end);
        return TextView::between(begin, lineFeed);
    });
}

TextView LineReader::completeLine(TextView piece)
{
    const Line& line = m_lines[m_line];
    if (line.isUntouched() && (!piece.isAscii() || isPlain(piece, true))) {
        stashRest();
        return piece.isAscii() ? withoutCarriageReturn(piece) : piece;
    }
    append(piece, true);
    nextLine();
    stashRest();
    return line.view();
}

/// Goes on behind so many bytes of the block; the last line in it is not among them.
void LineReader::leaveOut(qsizetype size)
{
    m_rest = TextView(m_rest.ascii() + size, m_rest.size() - size);
    if (size <= m_plainSize)
        m_plainSize -= size;
    else
        findPlainLines();
}

/// Keeps the start of a line that goes on in the next block, so that nothing is left of this one;
/// where whole lines are left, finds those that can be handed out as they are.
void LineReader::stashRest()
{
    m_plainSize = 0;
    if (m_rest.isEmpty()) {
        m_lineStart = m_blockEnd;
        return;
    }
    if (m_rest.data() <= m_lastLineFeed) {
        findPlainLines();
        return;
    }
    if (m_lines[m_line].isUntouched())
        m_lineStart = m_blockEnd - m_rest.size();
    append(m_rest, false);
    m_rest = TextView();
}

void LineReader::findPlainLines()
{
    if (!m_rest.isAscii() || !m_lines[m_line].isUntouched())
        return;
    // The last line is left out: what is behind it must be kept when it has been read.
    const char* const end = static_cast<const char*>(m_lastLineFeed);
    m_plainSize = findSpecial(m_rest.ascii(), end, m_blockHasReturns) - m_rest.ascii();
}

void LineReader::append(TextView piece, bool endsLine)
{
    Line& line = m_lines[m_line];
    const bool staysAscii = !line.isDecoded && piece.isAscii() && isPlain(piece, endsLine);
    if (staysAscii) {
        const TextView ascii = endsLine ? withoutCarriageReturn(piece) : piece;
        line.bytes.append(ascii.ascii(), static_cast<int>(ascii.size()));
        return;
    }
    if (!line.isDecoded && !line.bytes.isEmpty())
        line.characters = line.view().toString();
    line.isDecoded = true;
    if (m_isSingleByte && piece.isAscii())
        appendByTable(piece, line.characters);
    else
        line.characters += decode(piece, endsLine);
}

void LineReader::appendByTable(TextView piece, QString& characters) const
{
    const int size = characters.size();
    characters.resize(size + static_cast<int>(piece.size()));
    QChar* out = characters.data() + size;
    for (const char byte : std::string_view(piece.ascii(), static_cast<size_t>(piece.size()))) {
        if (byte != '\r')
            *out++ = m_byteTable.at(byte);
    }
    characters.resize(static_cast<int>(out - characters.constData()));
}

/// The characters of a piece of the block. The line feed behind it is part of what is decoded: a
/// character that is cut short shows only there.
QString LineReader::decode(TextView piece, bool endsLine)
{
    if (!piece.isAscii())
        return piece.toString();
    QString characters = m_codec->toUnicode(
        piece.ascii(), static_cast<int>(piece.size()) + (endsLine ? 1 : 0), m_state.get());
    if (endsLine)
        characters.chop(1);
    return characters.remove(QLatin1Char('\r'));
}

void LineReader::nextLine()
{
    m_line = (m_line + 1) % m_lines.size();
    m_lines[m_line].clear();
}

/// Reads on to a block with a line feed in it; false when the file ends before.
bool LineReader::fill()
{
    m_block = 1 - m_block;
    while (readBlock()) {
        if (m_lastLineFeed)
            return true;
        stashRest();
    }
    return false;
}

bool LineReader::readBlock()
{
    Block& block = m_blocks[m_block];
    block.bytes.resize(blockSize);
    const qint64 size = m_file.read(block.bytes.data(), blockSize);
    if (size <= 0) {
        m_fileHasEnded = true;
        return false;
    }
    block.bytes.resize(static_cast<int>(size));
    m_blockEnd += size;
    chooseCodec(block.bytes);

    if (!m_findsInBytes) {
        block.characters =
            m_codec->toUnicode(block.bytes.constData(), block.bytes.size(), m_state.get());
        block.characters.remove(QLatin1Char('\r'));
        const auto* const begin = reinterpret_cast<const char16_t*>(block.characters.utf16());
        setRest(begin, begin + block.characters.size());
        return true;
    }
    const char* begin = block.bytes.constData();
    const char* const end = begin + block.bytes.size();
    if (m_isAtStart && m_codec->mibEnum() == utf8Mib && block.bytes.startsWith(utf8Mark.data()))
        begin += utf8Mark.size();
    m_isAtStart = false;
    m_blockHasReturns = std::memchr(begin, '\r', static_cast<size_t>(end - begin));
    setRest(begin, end);
    return true;
}

template <typename Unit>
void LineReader::setRest(const Unit* begin, const Unit* end)
{
    const auto last = std::find(std::make_reverse_iterator(end), std::make_reverse_iterator(begin),
        static_cast<Unit>('\n'));
    m_lastLineFeed = last.base() == begin ? nullptr : last.base() - 1;
    m_rest = TextView::between(begin, end);
}

void LineReader::chooseCodec(const QByteArray& firstBlock)
{
    if (!m_codecIsChosen) {
        m_codec = QTextCodec::codecForUtfText(firstBlock, m_codec);
        // Each single byte of UTF-8 gives a character, too: that of an error.
        const bool isUtf8 = m_codec->mibEnum() == utf8Mib;
        m_isSingleByte = !isUtf8 && m_byteTable.read(*m_codec);
        m_findsInBytes = isUtf8 || m_isSingleByte;
        m_codecIsChosen = true;
    }
    // A mark is passed over here, at the start of the file; behind it, it would be a character.
    if (m_findsInBytes)
        m_state->flags |= QTextCodec::IgnoreHeader;
}
