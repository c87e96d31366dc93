#include "resultwriter.h"

#include "models/defpolygontablemodel.h"

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

bool isEmptyRow(const DefPolygonTableModel& model, int row, int columnCount)
{
    for (int column = 0; column < columnCount; ++column) {
        if (model.hasValue(row, column))
            return false;
    }
    return true;
}

void writeCatalogueRow(QXmlStreamWriter& writer, const DefPolygonTableModel& model, int row)
{
    const int columnCount = model.columnCount();
    if (isEmptyRow(model, row, columnCount)) {
        writer.writeEmptyElement(RowTag);
        return;
    }
    writer.writeStartElement(RowTag);
    for (int column = 0; column < columnCount; ++column) {
        if (model.hasValue(row, column))
            writeCell(writer, model.editText(row, column));
        else
            writer.writeEmptyElement(CellTag);
    }
    writer.writeEndElement();
}

} // namespace

void writeResult(
    QXmlStreamWriter& writer, QVector<DefPolygon>& objects, const ResultOptions& options)
{
    DefPolygonTableModel model;
    model.setNxyColNum(options.info.nColNum, options.info.xColNum, options.info.yColNum);
    model.setFieldNumValueMap(options.fields);

    startTable(writer, options.tableName);
    if (options.update)
        writer.writeAttribute(UpdateAttr, QStringLiteral("1"));
    for (DefPolygon& object : objects) {
        model.setPolygon(&object);
        writer.writeStartElement(RowTag);
        for (int i = 0; i < options.info.defColNum; ++i)
            writer.writeEmptyElement(CellTag);
        writeCell(writer, object.def);
        startTable(writer, options.catalogueTableName);
        for (int row = 0; row < model.rowCount(); ++row)
            writeCatalogueRow(writer, model, row);
        writer.writeEndElement();
        writer.writeEndElement();
    }
    writer.writeEndElement();
}
