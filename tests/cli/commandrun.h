#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <initializer_list>

class QProcess;

/// What a run of the command left behind.
struct CommandRun {
    int status = -1; ///< the exit status; -1 when a signal ended it
    QByteArray out;
    QString err;

    QStringList errorLines() const;
};

/// The words of a command line.
QStringList words(std::initializer_list<const char*> words);

/// The command under test.
QString commandPath();

/// Starts a program; arguments are UTF-8 whatever the locale.
void startProgram(QProcess& process, const QString& program, const QStringList& arguments);
/// Waits for a program to end, for a while.
CommandRun waitFor(QProcess& process);

/// Runs the command in `folder`.
CommandRun runCommand(const QStringList& arguments, const QString& folder);
/// Runs a line of shell in `folder`; $CLI is the command.
CommandRun runShell(const QString& script, const QString& folder);

/// Waits until a process sleeps in the opening of a pipe, as far as the system tells.
void waitForOpening(const QProcess& process);

/// Whether a program can be run on a terminal of its own here.
bool canOpenTerminal();

/// A file among the data of these tests.
QString dataFile(const char* name);
QByteArray contentOf(const QString& fileName);
