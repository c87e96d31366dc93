#pragma once

#include "interrupt.h"

#include <QIODevice>
#include <QJsonDocument>

#include <memory>
#include <optional>

class QFileDevice;
class QJsonArray;

/// The name that stands for standard output.
inline const QString standardOutput = QStringLiteral("-");

/// What a command writes: a file that appears whole or not at all, a device or a pipe as it is, or
/// standard output for its name. Writes are gathered into large ones.
///
/// Errors end the command: commit() throws a Failure and so does opening.
class OutputFile : public QIODevice {
public:
    explicit OutputFile(const QString& fileName);
    ~OutputFile() override;

    /// Fails at once where opening could not succeed, so that no work is done in vain.
    static void checkPlace(const QString& fileName);

    /// The name as messages have it.
    static QString shownName(const QString& fileName);

    /// Whether what is written stays out of sight until commit(): a file, not a device, a pipe or
    /// standard output.
    static bool appearsAtEnd(const QString& fileName);

    /// How many bytes this process has written through all of them. Any thread may ask.
    static qint64 bytesWritten();

    bool isSequential() const override { return true; }
    /// Hands over what is gathered, so that a reader has it.
    void flushAll() { flushBuffer(); }
    /// Writes what is left and lets the file appear.
    void commit();
    /// Lets two files that belong together appear once both are written.
    static void commitPair(OutputFile& first, OutputFile& second);

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char* data, qint64 size) override;

private:
    /// Writes what is left; fails where any of the file could not be written.
    void finish();
    void appear();
    void flushBuffer();
    void writeThrough(const char* data, qint64 size);
    void failAfterError() const;

    // Made first and destroyed last: no signal ends the program while there is a temporary file.
    std::optional<Interrupt::Deferral> m_deferral;
    QString m_fileName;
    std::unique_ptr<QFileDevice> m_file;
    QByteArray m_buffer;
    int m_error = 0; ///< errno of the first write that failed
};

/// The text of a document; what would steer a terminal is escaped, as controls below the space are
/// in all JSON.
QByteArray jsonText(const QJsonDocument& document, QJsonDocument::JsonFormat format);

/// Writes a command's answer to standard output.
void writeJson(const QJsonArray& answers);
