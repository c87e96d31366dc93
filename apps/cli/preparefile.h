#pragma once

#include "import/formats.h"
#include "prepare/prepareoptions.h"
#include "prepare/preparereport.h"
#include "targets.h"

#include <functional>

/// A file and what is to become of it.
struct PrepareTask {
    QString fileName;
    const Format* format; ///< of the result; never null
    bool isForeign = false; ///< another program reads the file
    QString target; ///< the other file of a MIF/MID pair gets its name from it

    bool isMif() const { return !midTarget().isEmpty(); }
    QString midTarget() const { return format->companionFile(target); }
    /// The files that are read and written.
    TargetClaim claim() const;
};

/// Writes the prepared file. Fails when nothing could be written. `entityWritten`, which may be
/// empty, is called for each entity.
prep::PrepareReport prepareFile(const PrepareTask& task, const prep::PrepareOptions& options,
    const std::function<void()>& entityWritten = {});
