#include "import/linereader.h"

#include <algorithm>
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

/// Whether bytes are nothing but ASCII with no carriage return but those before a line feed.
bool isPlain(const char* begin, const char* end)
{
    char all = 0;
    for (const char* it = begin; it != end; ++it)
        all = static_cast<char>(all | *it);
    if (isHigh(all))
        return false;
    const auto isStray = [end](const char* it) { return it + 1 == end || it[1] != '\n'; };
    for (const char* it = std::find(begin, end, '\r'); it != end;
         it = std::find(it + 1, end, '\r')) {
        if (isStray(it))
            return false;
    }
    return true;
}

/// Whether a text in the encoding is one character a byte, and ASCII where the byte is.
bool isSingleByte(const QTextCodec& codec)
{
    QByteArray bytes;
    for (int i = 0; i < 256; ++i) {
        const char c = static_cast<char>(i);
        bytes.append(c).append('A').append(c).append(c).append('\n');
    }
    QTextCodec::ConverterState state;
    const QString text = codec.toUnicode(bytes.constData(), bytes.size(), &state);
    if (text.size() != bytes.size() || state.remainingChars != 0)
        return false;
    for (int i = 0; i < bytes.size(); ++i) {
        if (!isHigh(bytes.at(i)) && text.at(i) != QLatin1Char(bytes.at(i)))
            return false;
    }
    return true;
}

TextView withoutCarriageReturn(TextView line)
{
    const bool ends = !line.isEmpty() && line.ascii()[line.size() - 1] == '\r';
    return ends ? TextView(line.ascii(), line.size() - 1) : line;
}

} // namespace

TextView LineReader::Line::view() const
{
    return isDecoded ? TextView(QStringView(characters))
                     : TextView(bytes.constData(), bytes.size());
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

void LineReader::start()
{
    m_linesBefore = m_lineNum;
    m_state = std::make_unique<QTextCodec::ConverterState>();
    m_isAtStart = true;
    m_fileHasEnded = false;
    m_rest = TextView();
    nextLine();
}

bool LineReader::atEnd() const
{
    return m_rest.isEmpty() && m_lines[m_line].isEmpty() && (m_fileHasEnded || m_file.atEnd());
}

TextView LineReader::readLine()
{
    ++m_lineNum;
    if (!m_rest.isEmpty() || fill())
        return completeLine(takePiece());
    const Line& last = m_lines[m_line];
    nextLine();
    return last.isEmpty() ? TextView() : last.view();
}

void LineReader::skipLine()
{
    if (m_rest.isEmpty() || !m_lines[m_line].isUntouched()) {
        readLine();
        return;
    }
    ++m_lineNum;
    takePiece();
    stashRest();
}

/// Takes the bytes or characters up to the next line feed from the block, and the line feed too.
TextView LineReader::takePiece()
{
    return m_rest.visit([this](auto begin, auto end) {
        const auto lineFeed = std::find(begin, end, '\n');
        m_rest = TextView::between(lineFeed + 1, end);
        return TextView::between(begin, lineFeed);
    });
}

TextView LineReader::completeLine(TextView piece)
{
    Line& line = m_lines[m_line];
    if (line.isUntouched() && (!piece.isAscii() || isPlainLine(piece))) {
        stashRest();
        return piece.isAscii() ? withoutCarriageReturn(piece) : piece;
    }
    append(piece, true);
    nextLine();
    stashRest();
    return line.view();
}

/// Keeps the start of a line that goes on in the next block, so that nothing is left of this one.
void LineReader::stashRest()
{
    if (m_rest.isEmpty() || m_rest.data() <= m_lastLineFeed)
        return;
    append(m_rest, false);
    m_rest = TextView();
}

void LineReader::append(TextView piece, bool endsLine)
{
    Line& line = m_lines[m_line];
    const bool staysAscii = !line.isDecoded && piece.isAscii()
        && (endsLine ? isPlainLine(piece) : isPlain(piece.ascii(), piece.ascii() + piece.size()));
    if (staysAscii) {
        const TextView ascii = endsLine ? withoutCarriageReturn(piece) : piece;
        line.bytes.append(ascii.ascii(), static_cast<int>(ascii.size()));
        return;
    }
    if (!line.isDecoded)
        line.characters = line.view().toString();
    line.isDecoded = true;
    line.characters += decode(piece, endsLine);
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
    m_lines[m_line] = Line();
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
    m_blockIsPlain = isPlain(begin, end);
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
        m_findsInBytes = m_codec->mibEnum() == utf8Mib || isSingleByte(*m_codec);
        m_codecIsChosen = true;
    }
    // A mark is passed over here, at the start of the file; behind it, it would be a character.
    if (m_isAtStart && m_findsInBytes)
        m_state->flags |= QTextCodec::IgnoreHeader;
}

bool LineReader::isPlainLine(TextView piece) const
{
    // The line feed stands behind the piece.
    return m_blockIsPlain || isPlain(piece.ascii(), piece.ascii() + piece.size() + 1);
}
