#pragma once

#include <QLatin1String>
#include <QString>

/// What can go wrong in an import.
enum class FailureKind {
    FileNotOpened,
    NotMif, ///< the three header lines are wrong
    MidNotOpened,
    PointCoordinates, ///< of a MIF POINT
    PointDesignation, ///< no MID row for a POINT
    ObjectData, ///< no MID row for an object that is passed over
    ObjectDesignation, ///< no MID row for an object that is built
    Collection,
    Line, ///< a MIF LINE, like the next two
    Polyline,
    Region,
    NotDxf, ///< the file does not begin with a HEADER section
    DxfEntity, ///< a blank code line, or an entity that is incomplete or holds a bad number
};

/// One failure of an import, and where it happened.
struct ImportFailure {
    FailureKind kind;
    QString fileName; ///< the file that failed, as it was opened
    int number = 0; ///< the number in the message; 0 where the message names the file
    int line = 0; ///< one-based line that the reader had come to; 0 where there is none
    QLatin1String entity{}; ///< kind of the entity that was being read; empty between entities
    int entityLine = 0; ///< one-based line on which that entity starts

    /// The message for the user.
    QString text() const;
};
