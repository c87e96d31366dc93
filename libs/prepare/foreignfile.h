#pragma once

#include "prepare/prepareoptions.h"

#include <QString>
#include <QStringList>
#include <QVector>

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

/// A layer of a file of another format.
struct ForeignLayer {
    QString name;
    QStringList columns;
    bool hasObjects = true; ///< with places
};

/// The layers of such a file.
struct ForeignLayers {
    QVector<ForeignLayer> layers;
    QString failure; ///< why there are none, or which package brings the program
};

/// The endings of the names of such files, in lower case.
QStringList foreignSuffixes();
/// What stands for the name of a layer in PrepareOptions::layers, which are patterns.
QString layerPattern(const QString& name);

/// The format that the program ogr2ogr turns a file into, as the suffix of its name tells: MIF, or
/// null for a file that is none of its business.
const Format* formatOfForeignFile(const QString& fileName);

/// Who waits for a conversion.
struct ForeignWatcher {
    /// Asked every tenth of a second; when it says so, the program is ended and the failure says
    /// nothing of use.
    std::function<bool()> isCancelled;
    /// Called when the program tells how far it is, which it does not for every file;
    /// may be empty.
    std::function<void(int percent)> converted;
};

/// Asks ogrinfo for the layers of such a file; `folder` and `watcher` as below.
ForeignLayers listForeignLayers(
    const QString& fileName, const QTemporaryDir& folder, const ForeignWatcher& watcher);

/// Lets ogr2ogr turn such a file into a MIF/MID pair in `folder`, with all its columns in their
/// order, behind an empty one if `options` say so. A file of several layers must have one that
/// `options` choose.
ForeignPair convertForeignFile(const QString& fileName, const PrepareOptions& options,
    const QTemporaryDir& folder, const ForeignWatcher& watcher);

} // namespace prep
