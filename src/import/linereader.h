#pragma once

#include "import/bytetable.h"
#include "import/textview.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTextCodec>

#include <array>
#include <cstring>
#include <memory>
#include <string_view>

/// Reads a text file line by line: the lines and ends that QTextStream::readLine() and atEnd()
/// give, without a string per line. Owns the position in the file and the line number.
///
/// Lines end with a line feed; carriage returns do not count. A byte-order mark overrides the
/// codec. Both are QTextStream's ways with text. Like the stream, the reader takes the file in
/// blocks of 16,384 bytes, and has reached its end when all characters of the blocks are used up
/// and the file has no more bytes.
///
/// Where the encoding keeps ASCII as it is and has no state, lines are found in the bytes, and only
/// those with other bytes are decoded.
class LineReader {
public:
    /// Opens a file for reading as text. False when it cannot be opened; nothing is reported.
    bool open(const QString& fileName, QTextCodec* codec);
    /// Closes the file; the last lines stay valid.
    void close();
    bool isOpen() const { return m_file.isOpen(); }
    /// The name last given to open().
    QString fileName() const { return m_file.fileName(); }

    bool atEnd() const { return m_rest.isEmpty() && isAtEndOfFile(); }
    /// Reads the next line, without its end, and counts it. At the end of the file the line is
    /// null. The last two lines read stay valid.
    TextView readLine()
    {
        const TextView line = takePlainLine();
        return line.isNull() ? readAnyLine() : line;
    }
    /// Reads a line like readLine() without making it ready to be looked at.
    void skipLine()
    {
        if (takePlainLine().isNull())
            skipAnyLine();
    }
    /// Passes over pairs of lines while `isSkipped` is true of the bytes of the first one, without
    /// its line feed. May stop sooner, but not at the end of the file.
    template <typename Predicate>
    void skipPairs(Predicate isSkipped)
    {
        if (m_rest.isEmpty() || !m_rest.isAscii())
            return;
        const char* const begin = m_rest.ascii();
        const char* next = begin;
        while (const char* const first = findLineFeedBeforeLast(next)) {
            if (!isSkipped(std::string_view(next, static_cast<size_t>(first - next))))
                break;
            const char* const second = findLineFeedBeforeLast(first + 1);
            if (!second)
                break;
            next = second + 1;
            m_lineNum += 2;
        }
        leaveOut(next - begin);
    }
    /// Reads the next line like readLine(), but leaves its bytes as they are in the file: each is
    /// the character that byteTable() gives. Null, and nothing is read, where that is not so, or
    /// the line does not stand in one piece.
    std::string_view readBytes();
    const ByteTable& byteTable() const { return m_byteTable; }
    /// The place of the next line in the file, in bytes; -1 where lines are not found in bytes.
    qint64 position() const
    {
        return m_findsInBytes ? (m_rest.isEmpty() ? m_lineStart : m_blockEnd - m_rest.size()) : -1;
    }
    /// The size of the file, in bytes.
    qint64 size() const { return m_file.size(); }
    /// Goes on at a place that position() has given, with so many lines of the file before it.
    void seek(qint64 position, int linesBefore);
    /// Starts the file again; the count of lines runs on.
    void rewind();
    /// The number of lines read since open(): the one-based number of the last line.
    int lineNum() const { return m_lineNum; }
    /// The one-based number of the last line in the file, which rewind() starts again.
    int lineOfFile() const { return m_lineNum - m_linesBefore; }

private:
    /// A block of the file: its bytes or, where lines are not found in them, its characters.
    struct Block {
        QByteArray bytes;
        QString characters;
    };
    /// A line that is put together from pieces, or decoded.
    struct Line {
        QByteArray bytes; ///< as long as all of them are ASCII
        QString characters;
        bool isDecoded = false;

        bool isUntouched() const { return !isDecoded && bytes.isEmpty(); }
        bool isEmpty() const { return isDecoded ? characters.isEmpty() : bytes.isEmpty(); }
        TextView view() const;
        void clear();
    };

    /// Takes a line that can be handed out as it stands in the block; null where none is known.
    TextView takePlainLine()
    {
        if (m_plainSize == 0)
            return {};
        const char* const begin = m_rest.ascii();
        const auto* const end =
            static_cast<const char*>(std::memchr(begin, '\n', static_cast<size_t>(m_plainSize)));
        if (!end)
            return {};
        const qsizetype size = end - begin;
        m_rest = TextView(end + 1, m_rest.size() - size - 1);
        m_plainSize -= size + 1;
        ++m_lineNum;
        return TextView(begin, size > 0 && end[-1] == '\r' ? size - 1 : size);
    }

    /// The next line feed that is not the last one of the block, or null.
    const char* findLineFeedBeforeLast(const char* begin) const
    {
        const auto size = static_cast<size_t>(static_cast<const char*>(m_lastLineFeed) - begin);
        return static_cast<const char*>(std::memchr(begin, '\n', size));
    }

    void start();
    bool isAtEndOfFile() const;
    TextView readAnyLine();
    void skipAnyLine();
    void chooseCodec(const QByteArray& firstBlock);
    bool fill();
    bool readBlock();
    template <typename Unit>
    void setRest(const Unit* begin, const Unit* end);
    TextView takePiece();
    TextView completeLine(TextView piece);
    void leaveOut(qsizetype size);
    void stashRest();
    void append(TextView piece, bool endsLine);
    void appendByTable(TextView piece, QString& characters) const;
    QString decode(TextView piece, bool endsLine);
    void nextLine();
    void findPlainLines();

    QFile m_file;
    QTextCodec* m_codec = nullptr;
    std::unique_ptr<QTextCodec::ConverterState> m_state;
    bool m_codecIsChosen = false;
    bool m_findsInBytes = false;
    bool m_isSingleByte = false;
    ByteTable m_byteTable; ///< of the codec, if m_isSingleByte
    bool m_isAtStart = true; ///< the next block is the first one of the file
    bool m_fileHasEnded = false;
    int m_lineNum = 0;
    int m_linesBefore = 0; ///< lines read before the file was started again

    std::array<Block, 2> m_blocks; ///< the one being read, and the one that holds earlier lines
    size_t m_block = 0;
    /// What is left of the block: empty, or with a line feed in it, and then it starts with a line.
    TextView m_rest;
    const void* m_lastLineFeed = nullptr; ///< in the block
    bool m_blockHasReturns = false; ///< carriage returns are among the bytes of the block
    qint64 m_blockEnd = 0; ///< place of the end of the block in the file
    qint64 m_lineStart = 0; ///< place of the line that goes on in the next block
    /// So many bytes of the rest hold nothing that needs to be decoded or put together.
    qsizetype m_plainSize = 0;

    // One holds the start of a line that goes on in the next block, the others earlier lines.
    std::array<Line, 4> m_lines;
    size_t m_line = 0;
};
