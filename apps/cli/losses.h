#pragma once

#include "console.h"
#include "importarguments.h"
#include "survey/importsurvey.h"

#include <optional>

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

/// What an import leaves out of its file. It is looked for while the import runs.
class Losses {
public:
    /// Starts to look, where anything is to be told.
    Losses(const ImportTask& task, const Telling& telling);

    /// Tells a line for each cause. `columns` may be null where axes do not matter. False where
    /// that ends the command: with --strict.
    bool tell(const ImportRun& run, const GeometryInfo* columns);

private:
    const Telling m_telling;
    std::optional<ImportSurvey> m_survey;
};

/// Puts the likely encoding of its files in the place of "auto", and tells it.
void resolveEncoding(ImportTask& task, const Telling& telling);
