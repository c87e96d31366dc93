#pragma once

#include <QFile>
#include <QString>
#include <QStringView>
#include <QTextStream>

class QTextCodec;

/// Reads a text file line by line: the lines and ends that QTextStream::readLine() and atEnd()
/// give, without a string per line. Owns the position in the file and the line number.
///
/// Lines end with a line feed; carriage returns do not count. A byte-order mark overrides the
/// codec. Both are QTextStream's ways with text.
class LineReader {
public:
    /// Opens a file for reading as text. False when it cannot be opened; nothing is reported.
    bool open(const QString& fileName, QTextCodec* codec);
    /// Closes the file; the last lines stay valid.
    void close();
    bool isOpen() const { return m_file.isOpen(); }
    /// The name last given to open().
    QString fileName() const { return m_file.fileName(); }

    bool atEnd() const;
    /// Reads the next line, without its end, and counts it. At the end of the file the line is
    /// null. The last two lines read stay valid.
    QStringView readLine();
    /// Starts the file again; the count of lines runs on.
    void rewind();
    /// The number of lines read since open(): the one-based number of the last line.
    int lineNum() const { return m_lineNum; }
    /// The one-based number of the last line in the file, which rewind() starts again.
    int lineOfFile() const { return m_lineNum - m_linesBefore; }

private:
    QStringView readLineByLine();
    QStringView readLineAcrossChunks();
    void forget();

    QFile m_file;
    QTextStream m_in;
    int m_lineNum = 0;
    int m_linesBefore = 0; ///< lines read before the file was started again
    bool m_byLine = false;

    QString m_chunk; ///< decoded text, read up to m_pos
    int m_pos = 0;
    QString m_line; ///< the last line that did not lie within a chunk
    QString m_previousChunk; ///< holds, like the next one, the line before the last
    QString m_previousLine;
};
