#pragma once

#include "catalogue/cataloguecolumns.h"
#include "geometry/defpolygon.h"
#include "importgeometryinterface.h"

#include <QString>
#include <QVector>

class QXmlStreamWriter;

/// What the result says beside the objects themselves.
struct ResultOptions {
    QString tableName; ///< name of the outer table; empty for none
    QString catalogueTableName; ///< name of the nested tables; empty for none
    bool update = false; ///< ask the host to update existing rows
    GeometryInfo info{ 0, 2, 1, 0 }; ///< the columns of the host's tables
    FieldNumValueMap fields; ///< extra fields: constant texts by zero-based catalogue column
};

/// Writes the objects as the host's nested form tables: an outer "FormTable" with a "Row" per
/// object, which holds the designation's "Cell" and a nested "FormTable" with the catalogue, a row
/// per row of the catalogue and a cell per column. Coordinates are written in the C locale.
///
/// The caller sets up `writer` and its device or string; nothing is written around the outer
/// element.
void writeResult(
    QXmlStreamWriter& writer, const QVector<DefPolygon>& objects, const ResultOptions& options);
