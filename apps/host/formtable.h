#pragma once

#include "geometry/defpolygon.h"
#include "importgeometryinterface.h"

#include <QIODevice>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// The cells of a row of objects that are neither its designation nor its catalogue.
struct OtherCells {
    QStringList object; ///< by column; empty where no such cell has a text
    QVector<QStringList> points; ///< of each vertex through all contours, as above
};

/// The program's own form: a table of objects, each with its coordinate catalogue.
struct FormTable {
    QString name;
    QString catalogueName;
    GeometryInfo columns{ 0, 2, 1, 1 };
    bool update = false; ///< rows replace those of the same designation
    int decimals = 2; ///< of coordinates, as they were read
    QVector<DefPolygon> objects;
    QVector<OtherCells> others; ///< of the objects

    /// Adds the rows of another table, or has them replace those of the same designation where the
    /// other table asks for it.
    void take(const FormTable& added);
    /// The number of columns of the catalogues.
    int catalogueColumns() const;
    qint64 vertexCount() const;
};

/// Whether all contours of an object are closed: a form does not say so in so many words.
bool isArea(const DefPolygon& object);

/// Why a form could not be read.
struct FormError {
    QString text;
    qint64 line = 0; ///< one-based; 0 when it is no matter of one line
};

/// Reads a form from XML, its designations and coordinates from the given columns. On an error
/// `table` is unspecified.
std::optional<FormError> readForm(QIODevice& device, const GeometryInfo& columns, FormTable& table);
/// Reads a form from a text, as the plug-in hands it over.
std::optional<FormError> readForm(
    const QString& xml, const GeometryInfo& columns, FormTable& table);

/// Writes the form as XML in UTF-8. Errors are left to the device.
void writeForm(QIODevice& device, const FormTable& table);
