#pragma once

#include "prepare/prepareoptions.h"

#include <QString>

#include <functional>

struct Format;
class QTemporaryDir;

namespace prep {

/// What a file of another format has become.
struct ForeignPair {
    QString mifFileName; ///< empty where it failed
    QString failure; ///< why it failed, or which package brings the program
    PrepareOptions options; ///< what is left to do with the pair
};

/// The format that the program ogr2ogr turns a file into, as the suffix of its name tells: MIF, or
/// null for a file that is none of its business.
const Format* formatOfForeignFile(const QString& fileName);

/// Who waits for a conversion.
struct ForeignWatcher {
    /// Asked every tenth of a second; when it says so, the program is ended and the failure says
    /// nothing of use.
    std::function<bool()> isCancelled;
    /// Called when the program tells how far it is, which it does not for every file.
    std::function<void(int percent)> converted;
};

/// Lets ogr2ogr turn such a file into a MIF/MID pair in `folder`, with all its columns in their
/// order. A file of several layers must have one that `options` choose.
ForeignPair convertForeignFile(const QString& fileName, const PrepareOptions& options,
    const QTemporaryDir& folder, const ForeignWatcher& watcher);

} // namespace prep
