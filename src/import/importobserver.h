#pragma once

#include "import/importfailure.h"

#include <QLatin1String>

/// What an import goes through its files for.
enum class ImportPass {
    Points, ///< the catalogue of named points, and with it the labels of a drawing
    Labels, ///< the labels of a drawing that the point pass has not read
    Objects,
};

/// Is told what an import does, while it does it. Kinds of entities have the names of the format,
/// in capitals; they live as long as the program.
///
/// The observer as it stands shows failures to the user and takes no note of the rest.
class ImportObserver {
public:
    virtual ~ImportObserver();

    /// A pass over a file begins; what follows is of this pass.
    virtual void passStarted(ImportPass pass, const QString& fileName);
    /// A point or a label was read.
    virtual void entityRead(QLatin1String kind);
    /// The next object of the collection was built; the collection may be emptied now, what follows
    /// does not look back. But the object's vertices may get their names a little later: until then
    /// its contours must be kept as they are, not copied. `closed`: the file says that it encloses
    /// an area. Not `complete`: its reading failed, what was read of it stays; the failure itself
    /// is told before or after.
    virtual void objectBuilt(QLatin1String kind, bool closed, bool complete);
    /// So many objects of the import, from the first on, have got all their names. In the end all
    /// have; where memory does not suffice for it those that have not are no part of the import.
    virtual void objectsNamed(int count);
    /// Something went wrong; called once for each failure, when it happens.
    virtual void failed(const ImportFailure& failure);
};
