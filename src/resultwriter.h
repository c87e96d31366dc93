#pragma once

#include "geometry/defpolygon.h"
#include "importgeometryinterface.h"

#include <QMap>
#include <QString>
#include <QVector>

class QXmlStreamWriter;

/// What the result says beside the objects themselves.
struct ResultOptions {
    QString tableName; ///< name of the outer table; empty for none
    QString catalogueTableName; ///< name of the nested tables; empty for none
    bool update = false; ///< ask the host to update existing rows
    GeometryInfo info{ 0, 2, 1, 0 }; ///< the columns of the host's tables
    QMap<int, QString> fields; ///< extra fields: constant texts by zero-based catalogue column
};

/// Writes the objects as the host's nested form tables: an outer "FormTable" with a "Row" per
/// object, which holds the designation's "Cell" and a nested "FormTable" with the catalogue, a row
/// per row of DefPolygonTableModel and a cell per column. Coordinates are written in the C locale.
///
/// The caller sets up `writer` and its device or string; nothing is written around the outer
/// element. The objects are not changed.
void writeResult(
    QXmlStreamWriter& writer, QVector<DefPolygon>& objects, const ResultOptions& options);
