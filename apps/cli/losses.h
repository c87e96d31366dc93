#pragma once

#include "console.h"
#include "importarguments.h"

class QCommandLineParser;

/// How much a command tells on standard error.
struct Telling {
    bool quiet = false; ///< errors alone
    bool verbose = false; ///< what to do about each loss, too
    bool strict = false; ///< a loss is an error
};

/// The options --strict, -q and -v.
QList<QCommandLineOption> tellingOptions();
Telling readTelling(const QCommandLineParser& parser);

/// Tells what an import left out of its file, a line for each cause. `columns` may be null where
/// axes do not matter. False where that ends the command: with --strict.
bool tellLosses(const ImportTask& task, const ImportRun& run, const GeometryInfo* columns,
    const Telling& telling);

/// Puts the likely encoding of its files in the place of "auto", and tells it.
void resolveEncoding(ImportTask& task, const Telling& telling);
