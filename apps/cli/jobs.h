#pragma once

#include <QByteArray>
#include <QCommandLineOption>
#include <QString>
#include <QStringList>

#include <functional>

class QCommandLineParser;

constexpr int maxJobs = 256;

/// The option --jobs; without a value it stands for all cores.
QCommandLineOption jobsOption();

/// What became of a process of this program.
struct JobResult {
    enum End { Exited, Crashed, NotStarted };

    /// Whether it ended by itself, with a status.
    bool exited() const { return end == Exited; }
    /// What to say of one that did not; `work` is what it was doing.
    QString trouble(const QString& work) const;

    End end = Exited;
    int status = 0;
    QByteArray output; ///< what it wrote to standard output
    QByteArray errors; ///< what it wrote to standard error
};

/// A bar on standard error while it is a terminal, and the lines that are printed above it.
class Progress {
public:
    explicit Progress(int total);
    ~Progress();
    Q_DISABLE_COPY(Progress)

    void advance();
    /// Prints a line, or lines that a process of this program wrote.
    void print(const QString& line);
    void print(const QByteArray& lines);

private:
    void show() const;
    void hide() const;

    int m_total;
    int m_done = 0;
    bool m_isTerminal;
};

/// The options of this command line, without the `left out` ones, for another process.
QStringList forwardedArguments(const QCommandLineParser& parser,
    const QList<QCommandLineOption>& options, const QStringList& leftOut);

using JobReceiver = std::function<void(int index, const JobResult& result, Progress& progress)>;

/// Runs this program with each of the argument lists, `jobCount` of them at a time, and hands over
/// the results as they come. A signal that ends this process ends the others first.
void runJobs(const QList<QStringList>& argumentLists, int jobCount, const JobReceiver& receiver);
