#include "formtable.h"

#include <QLocale>
#include <QXmlStreamWriter>

#include <algorithm>

namespace {

class FormWriter {
public:
    FormWriter(QIODevice& device, const FormTable& table)
        : m_xml(&device)
        , m_table(table)
        , m_columns(table.columns)
    {
        m_xml.setAutoFormatting(true);
    }

    void write()
    {
        startTable(m_table.name);
        if (m_table.update)
            m_xml.writeAttribute(QStringLiteral("Update"), QStringLiteral("1"));
        for (int i = 0; i < m_table.objects.size(); ++i)
            writeObject(m_table.objects.at(i), m_table.others.at(i));
        m_xml.writeEndElement();
    }

private:
    void startTable(const QString& name)
    {
        m_xml.writeStartElement(QStringLiteral("FormTable"));
        if (!name.isEmpty())
            m_xml.writeAttribute(QStringLiteral("Name"), name);
    }

    void writeObject(const DefPolygon& object, const OtherCells& others)
    {
        m_xml.writeStartElement(QStringLiteral("Row"));
        const int defColumn = std::max(m_columns.defColNum, 0);
        const int count = std::max(defColumn + 1, others.object.size());
        for (int column = 0; column < count; ++column) {
            if (column == defColumn)
                writeCell(object.def);
            else
                writeCellOrNone(others.object.value(column));
        }
        startTable(m_table.catalogueName);
        writeCatalogue(object, others.points);
        m_xml.writeEndElement();
        m_xml.writeEndElement();
    }

    void writeCatalogue(const DefPolygon& object, const QVector<QStringList>& others)
    {
        int number = 0;
        for (int c = 0; c < object.contours.size(); ++c) {
            if (c > 0)
                m_xml.writeEmptyElement(QStringLiteral("Row"));
            for (const DefPoint& point : object.contours.at(c))
                writePoint(point, others.value(number++));
        }
    }

    void writePoint(const DefPoint& point, const QStringList& others)
    {
        m_xml.writeStartElement(QStringLiteral("Row"));
        const int count = std::max(
            { m_columns.nColNum + 1, m_columns.xColNum + 1, m_columns.yColNum + 1, others.size() });
        for (int column = 0; column < count; ++column) {
            if (column == m_columns.nColNum)
                writeCellOrNone(point.def);
            else if (column == m_columns.xColNum)
                writeCell(number(point.x));
            else if (column == m_columns.yColNum)
                writeCell(number(point.y));
            else
                writeCellOrNone(others.value(column));
        }
        m_xml.writeEndElement();
    }

    QString number(double value) const { return QString::number(value, 'f', m_table.decimals); }

    void writeCell(const QString& text)
    {
        m_xml.writeStartElement(QStringLiteral("Cell"));
        m_xml.writeCharacters(text);
        m_xml.writeEndElement();
    }

    void writeCellOrNone(const QString& text)
    {
        if (text.isEmpty())
            m_xml.writeEmptyElement(QStringLiteral("Cell"));
        else
            writeCell(text);
    }

    QXmlStreamWriter m_xml;
    const FormTable& m_table;
    const GeometryInfo m_columns;
};

} // namespace

void writeForm(QIODevice& device, const FormTable& table)
{
    FormWriter(device, table).write();
}
