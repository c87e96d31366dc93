#pragma once

#include "prepare/prepareoptions.h"
#include "prepare/preparereport.h"

#include <QByteArray>

#include <optional>

class QIODevice;

namespace prep {

/// The two files of a MIF/MID pair.
struct MifPair {
    QByteArray mif;
    std::optional<QByteArray> mid; ///< none where there is no such file
};

/// Writes a MIF/MID pair as one that the readers take whole, and tells in `report` what that took.
/// False, with report.failure told and nothing written, when the file is no MIF.
bool prepareMif(MifPair pair, const PrepareOptions& options, QIODevice& mifOut, QIODevice& midOut,
    PrepareReport& report);

/// The MID file that belongs to a MIF file, whatever the case of its name; empty when there is
/// none.
QString midFileOf(const QString& mifFileName);

} // namespace prep
