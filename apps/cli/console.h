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

/// Whether a terminal, or the eye, takes a character for something else than itself.
bool isDeceptive(uint character);

/// `text` as a terminal may be given it: what would steer it, or change what the rest of the line
/// looks like, becomes a picture or an escape, a byte of a file name that is no text "\xNN".
QString printable(const QString& text);

/// Writes a line to standard error, made printable.
void printError(const QString& text);

/// Writes a line about a file to standard error.
void printMessage(const QString& fileName, const QString& text);

/// Shows a line on standard error, which is a terminal, until the next line is printed or shown;
/// nothing for an empty text. Any thread may do so.
void showProgressLine(const QString& text);

/// Whether what goes to this descriptor may have colours: it is a terminal and nobody objects.
bool mayBeColoured(int descriptor);

/// Without a locale (in a job or a container) arguments, file names and messages would be limited
/// to ASCII: makes them UTF-8. Names of files that are no UTF-8 keep their bytes all the same. The
/// default encoding of the imported files stays what it was.
void enableCyrillic();

/// The name of the codec that the locale had at first.
QByteArray systemEncoding();

/// Whether this process may open so many more files.
bool canOpenFiles(int count);
