#pragma once

#include "catalogue/cataloguecolumns.h"
#include "geometry/defpolygon.h"
#include "importgeometryinterface.h"

#include <QString>
#include <QVector>

#include <memory>

class QIODevice;

/// What the result says beside the objects themselves.
struct ResultOptions {
    QString tableName; ///< name of the outer table; empty for none
    QString catalogueTableName; ///< name of the nested tables; empty for none
    bool update = false; ///< ask the host to update existing rows
    GeometryInfo info{ 0, 2, 1, 0 }; ///< the columns of the host's tables
    FieldNumValueMap fields; ///< extra fields: constant texts by zero-based catalogue column
};

/// The objects as the host's nested form tables: an outer "FormTable" with a "Row" per object,
/// which holds the designation's "Cell" and a nested "FormTable" with the catalogue, a row per row
/// of the catalogue and a cell per column. Coordinates are written in the C locale.
///
/// The text is, to the letter, what QXmlStreamWriter writes with automatic formatting: a line feed
/// in front, indents of four spaces, and no characters that XML does not allow.
QString resultText(const QVector<DefPolygon>& objects, const ResultOptions& options);

/// Writes the same text object by object to a device, in UTF-8. Whether the device takes it is for
/// the caller to ask the device.
class ResultWriter {
public:
    ResultWriter(QIODevice& device, const ResultOptions& options);
    ~ResultWriter();
    ResultWriter(const ResultWriter&) = delete;
    ResultWriter& operator=(const ResultWriter&) = delete;

    void write(const DefPolygon& object);
    /// Ends the text; to be called once, behind the last object.
    void finish();

private:
    class Private;
    std::unique_ptr<Private> d;
};
