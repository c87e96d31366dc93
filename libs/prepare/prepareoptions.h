#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace prep {

enum class Level { Repair, Flatten };
enum class BlockMode { Auto, Explode, Points };
enum class CircleMode { Points, Contours };

/// What a preparation is to do; the defaults are those of the command.
struct PrepareOptions {
    Level level = Level::Flatten;
    double tolerance = 0.01; ///< of chords from their curves, in the file's units
    BlockMode blocks = BlockMode::Auto;
    CircleMode circles = CircleMode::Points;
    QStringList layers; ///< patterns of the layers to take; none for all
    QStringList skipLayers; ///< patterns of the layers to leave out
    bool visibleOnly =
        false; ///< without frozen layers, layers that are off, and invisible entities
    bool texts = true; ///< labels of TEXT
    bool mtexts = true; ///< labels of MTEXT
    bool attributes = true; ///< labels of ATTRIB
    bool dimensions = false; ///< labels of DIMENSION
    std::optional<double> join; ///< tolerance within which ends of open contours meet
    bool hatches = false; ///< the boundaries of hatches, too
    QByteArray fromEncoding; ///< a codec's name; empty to tell it from the bytes
    QByteArray encoding; ///< of the result; empty to keep that of the source
    QString nameField; ///< the column of a MIF that becomes the first one; empty for no change
    std::optional<int> nameColumn; ///< that column by its place, from zero, instead of its name
    bool withoutNames = false; ///< an empty column becomes the first one; of other formats only
    bool swapXY = false;
    double scale = 1;
};

} // namespace prep
