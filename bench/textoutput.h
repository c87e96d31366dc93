#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTextCodec>

/// A text file written in large pieces. Any failure ends the program with a message.
class TextOutput {
public:
    TextOutput(const QString& fileName, const QTextCodec* codec);
    ~TextOutput();
    TextOutput(const TextOutput&) = delete;
    TextOutput& operator=(const TextOutput&) = delete;

    TextOutput& operator<<(const char* ascii);
    TextOutput& operator<<(const QString& text);
    TextOutput& operator<<(int value);
    /// Writes `value` with the number of decimals given to setDecimals().
    TextOutput& operator<<(double value);

    void setDecimals(int decimals) { m_decimals = decimals; }

private:
    void flush();

    QFile m_file;
    const QTextCodec* m_codec;
    QByteArray m_buffer;
    int m_decimals = 2;
};
