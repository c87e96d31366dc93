#pragma once

#include "geometry/defpolygon.h"
#include "import/formats.h"
#include "import/importoptions.h"

#include <QStringList>
#include <QVector>

/// What an import gave.
struct ImportRun {
    QVector<DefPolygon> objects;
    QStringList messages; ///< what the reader reported, in order
};

/// Reads a file as the dialog does; whatever goes wrong is among the messages.
ImportRun runImport(const Format& format, const ImportOptions& options);

/// The names of all files that an import may open, whether they are there or not.
QStringList filesOf(const Format& format, const ImportOptions& options);
