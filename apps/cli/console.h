#pragma once

#include <QByteArray>
#include <QString>

/// What the program ends with.
enum ExitStatus {
    Done = 0,
    Failed = 1, ///< an import reported an error, or the result could not be written
    WrongUsage = 2,
    Found = 3, ///< a check found something
};

/// Thrown to end a command: `text` is told to the user and `status` returned.
struct Failure {
    ExitStatus status;
    QString text;
};

/// Writes a line to standard error.
void printError(const QString& text);

/// Writes a line about a file to standard error.
void printMessage(const QString& fileName, const QString& text);

/// Without a locale (in a job or a container) arguments, file names and messages would be limited
/// to ASCII: makes them UTF-8. The default encoding of the imported files stays what it was.
void enableCyrillic();

/// The name of the codec that the locale had at first.
QByteArray systemEncoding();
