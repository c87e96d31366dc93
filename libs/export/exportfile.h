#pragma once

#include "importrun/importrun.h"

#include <QIODevice>
#include <QString>

#include <functional>

/// The forms in which a catalogue is passed on.
enum class ExportFormat { Csv, GeoJson, Mif };

struct ExportOptions {
    bool russianNumbers = false; ///< CSV: semicolons between values, commas in numbers
    bool swapped = false; ///< the second coordinate of the file is the easting; not for CSV
    std::function<void()> objectWritten; ///< called behind each object; may be empty
};

/// The form that the suffix of a file's name tells; none for others.
std::optional<ExportFormat> exportFormatOf(const QString& fileName);

/// A row for each point: object, contour, number in the contour, designation, coordinates as the
/// file has them, area and perimeter of the object. UTF-8 with a byte-order mark; lines end as the
/// form asks.
void writeCsv(QIODevice& out, const QVector<DefPolygon>& objects, const QVector<Shape>& shapes,
    const ExportOptions& options);

/// A feature for each object: rings are closed, outer ones run counter-clockwise. Coordinates stand
/// easting first, in the units of the file.
void writeGeoJson(QIODevice& out, const QVector<DefPolygon>& objects, const QVector<Shape>& shapes,
    const ExportOptions& options);

/// A pair of files in Windows-1251, with the designation, the area and the perimeter of each
/// object. Returns how many designations have letters that this encoding does not know.
qint64 writeMif(QIODevice& mif, QIODevice& mid, const QVector<DefPolygon>& objects,
    const QVector<Shape>& shapes, const ExportOptions& options);

/// A number with all its digits and no exponent.
QByteArray plainNumber(double value);
