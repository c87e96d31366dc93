#include "resultwriter.h"

#include "catalogue/cataloguerows.h"

#include <QXmlStreamWriter>

namespace {

const QString FormTableTag = QStringLiteral("FormTable");
const QString RowTag = QStringLiteral("Row");
const QString CellTag = QStringLiteral("Cell");
const QString NameAttr = QStringLiteral("Name");
const QString UpdateAttr = QStringLiteral("Update");

void startTable(QXmlStreamWriter& writer, const QString& name)
{
    writer.writeStartElement(FormTableTag);
    if (!name.isEmpty())
        writer.writeAttribute(NameAttr, name);
}

void writeCell(QXmlStreamWriter& writer, const QString& text)
{
    writer.writeStartElement(CellTag);
    writer.writeCharacters(text);
    writer.writeEndElement();
}

bool isEmptyRow(const CatalogueColumns& columns, const DefPoint& point)
{
    for (int column = 0; column < columns.count(); ++column) {
        if (columns.hasText(point, column))
            return false;
    }
    return true;
}

void writeVertex(QXmlStreamWriter& writer, const CatalogueColumns& columns, const DefPoint& point)
{
    if (isEmptyRow(columns, point)) {
        writer.writeEmptyElement(RowTag);
        return;
    }
    writer.writeStartElement(RowTag);
    for (int column = 0; column < columns.count(); ++column) {
        const QString text = columns.text(point, column, false);
        if (text.isNull())
            writer.writeEmptyElement(CellTag);
        else
            writeCell(writer, text);
    }
    writer.writeEndElement();
}

void writeCatalogue(
    QXmlStreamWriter& writer, const CatalogueColumns& columns, const DefPolygon& object)
{
    visitCatalogueRows(object, [&](const RowInfo& row) {
        if (row.contourIndex < 0)
            writer.writeEmptyElement(RowTag);
        else
            writeVertex(writer, columns, object.contours.at(row.contourIndex).at(row.pointIndex));
    });
}

} // namespace

void writeResult(
    QXmlStreamWriter& writer, const QVector<DefPolygon>& objects, const ResultOptions& options)
{
    CatalogueColumns columns;
    columns.setNxyColNum(options.info.nColNum, options.info.xColNum, options.info.yColNum);
    columns.setFieldNumValueMap(options.fields);

    startTable(writer, options.tableName);
    if (options.update)
        writer.writeAttribute(UpdateAttr, QStringLiteral("1"));
    for (const DefPolygon& object : objects) {
        writer.writeStartElement(RowTag);
        for (int i = 0; i < options.info.defColNum; ++i)
            writer.writeEmptyElement(CellTag);
        writeCell(writer, object.def);
        startTable(writer, options.catalogueTableName);
        writeCatalogue(writer, columns, object);
        writer.writeEndElement();
        writer.writeEndElement();
    }
    writer.writeEndElement();
}
