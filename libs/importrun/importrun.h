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

/// Reads a file as the dialog does; whatever goes wrong is among the messages. A name that is no
/// file's, but a pipe's or a device's, is told and not opened: it is read twice, and from its
/// start.
ImportRun runImport(const Format& format, const ImportOptions& options);

/// The names of all files that an import may open, whether they are there or not.
QStringList filesOf(const Format& format, const ImportOptions& options);
