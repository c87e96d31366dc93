#pragma once

#include <QString>

#include <memory>
#include <vector>

class MapImport;

/// A file format that can be imported. What differs between formats outside their readers stands
/// in these rows and nowhere else.
struct Format {
    QString id; ///< for command lines and other programs, in lower case
    QString operation; ///< what users know the import as
    QString suffix; ///< of file names, in lower case without a point
    QString filter; ///< for the choice of a file
    std::unique_ptr<MapImport> (*makeImporter)(); ///< never null
    /// The name of the file that goes with a file of this format; empty where there is none.
    QString (*companionFile)(const QString& fileName);
};

/// All formats, in the order in which they are offered.
const std::vector<Format>& formats();

/// The format whose operation has this name, letter for letter; null when there is none.
const Format* formatOfOperation(const QString& operation);
/// The format with this identifier; null when there is none.
const Format* formatOfId(const QString& id);
/// The format that the suffix of a file's name tells, whatever its case; null when it tells none.
const Format* formatOfFile(const QString& fileName);
