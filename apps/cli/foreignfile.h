#pragma once

#include "prepare/prepareoptions.h"

#include <QString>
#include <QStringList>

struct Format;
class QTemporaryDir;

/// The format that the program ogr2ogr turns a file into, as the suffix of its name tells: MIF, or
/// null for a file that is none of its business.
const Format* formatOfForeignFile(const QString& fileName);

/// Turns such a file into a MIF/MID pair in `folder`, and gives the name of the MIF file. A file of
/// several layers must have one that `options` choose. Where they name a column, the pair has only
/// that one. Fails with a text that says why, or which
/// package brings the program.
QString convertForeignFile(
    const QString& fileName, const prep::PrepareOptions& options, const QTemporaryDir& folder);
