#pragma once

#include "console.h"

#include <QCommandLineOption>
#include <QString>
#include <QStringList>

class QCommandLineParser;

/// A command of the program and what its help says.
struct Command {
    const char* name;
    const char* usage; ///< what stands behind the name on the command line
    const char* summary;
    QList<QCommandLineOption> (*ownOptions)();
    QList<QCommandLineOption> (*inputOptions)(); ///< which files are read, and how
    ExitStatus (*run)(const QCommandLineParser& parser);
    bool draws; ///< it needs a PlanDrawer

    QList<QCommandLineOption> options() const { return ownOptions() + inputOptions(); }
};

extern const Command convertCommand;
extern const Command checkCommand;
extern const Command planCommand;
extern const Command exportCommand;
extern const Command prepareCommand;
