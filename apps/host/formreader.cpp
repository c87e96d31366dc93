#include "formtable.h"

#include <QXmlStreamReader>

#include <algorithm>

namespace {

constexpr char formTag[] = "FormTable";
constexpr char rowTag[] = "Row";
constexpr char cellTag[] = "Cell";

/// More columns than any form has; a row of more is no table.
constexpr int mostCells = 10000;

class FormReader {
public:
    FormReader(QXmlStreamReader& xml, FormTable& table)
        : m_xml(xml)
        , m_table(table)
        , m_columns(table.columns)
    {
    }

    std::optional<FormError> read()
    {
        if (m_xml.readNextStartElement()) {
            if (m_xml.name() == QLatin1String(formTag))
                readObjects();
            else
                m_xml.raiseError(QStringLiteral("это не таблица формы"));
        }
        // What stands behind the table counts, too.
        while (!m_xml.atEnd())
            m_xml.readNext();
        if (!m_xml.hasError())
            return {};
        return FormError{ m_xml.errorString(), m_xml.lineNumber() };
    }

private:
    bool isAt(const char* tag) const { return m_xml.name() == QLatin1String(tag); }

    void readObjects()
    {
        m_table.name = m_xml.attributes().value(QLatin1String("Name")).toString();
        m_table.update = m_xml.attributes().value(QLatin1String("Update")) == QLatin1String("1");
        while (m_xml.readNextStartElement()) {
            if (isAt(rowTag))
                readObject();
            else
                m_xml.skipCurrentElement();
        }
    }

    void readObject()
    {
        DefPolygon object;
        OtherCells others;
        bool hasCatalogue = false;
        m_cells.clear();
        while (m_xml.readNextStartElement()) {
            if (isAt(cellTag)) {
                readCell();
            } else if (isAt(formTag) && !hasCatalogue) {
                hasCatalogue = true;
                readCatalogue(object, others);
            } else {
                m_xml.skipCurrentElement();
            }
        }
        object.def = m_cells.value(std::max(m_columns.defColNum, 0));
        others.object = othersOf({ std::max(m_columns.defColNum, 0) });
        m_table.objects.append(std::move(object));
        m_table.others.append(std::move(others));
    }

    void readCatalogue(DefPolygon& object, OtherCells& others)
    {
        m_table.catalogueName = m_xml.attributes().value(QLatin1String("Name")).toString();
        const QStringList objectCells = std::move(m_cells);
        m_hasOthers = false;
        while (m_xml.readNextStartElement()) {
            if (isAt(rowTag))
                readPoint(object, others);
            else
                m_xml.skipCurrentElement();
        }
        if (!m_hasOthers)
            others.points.clear();
        m_cells = objectCells;
    }

    void readPoint(DefPolygon& object, OtherCells& others)
    {
        m_cells.clear();
        while (m_xml.readNextStartElement()) {
            if (isAt(cellTag))
                readCell();
            else
                m_xml.skipCurrentElement();
        }
        if (object.contours.isEmpty())
            object.contours.append(QVector<DefPoint>());
        const bool isSeparator = std::all_of(
            m_cells.cbegin(), m_cells.cend(), [](const QString& cell) { return cell.isEmpty(); });
        if (isSeparator) {
            object.contours.append(QVector<DefPoint>());
            return;
        }
        DefPoint point;
        point.def = m_cells.value(m_columns.nColNum);
        point.x = coordinate(m_columns.xColNum);
        point.y = coordinate(m_columns.yColNum);
        object.contours.last().append(point);
        QStringList cells = othersOf({ m_columns.nColNum, m_columns.xColNum, m_columns.yColNum });
        m_hasOthers = m_hasOthers || !cells.isEmpty();
        // Most rows are alike; they share one list.
        if (!others.points.isEmpty() && others.points.last() == cells)
            cells = others.points.last();
        others.points.append(cells);
    }

    double coordinate(int column)
    {
        bool ok = false;
        const QString text = m_cells.value(column);
        const double value = text.toDouble(&ok);
        if (!ok && !m_xml.hasError()) {
            m_xml.raiseError(QStringLiteral("в столбце %1 каталога не координата: «%2»")
                                 .arg(column + 1)
                                 .arg(text.left(40)));
        }
        const int point = text.indexOf(QLatin1Char('.'));
        if (point >= 0)
            m_table.decimals = std::max(m_table.decimals, std::min(text.size() - point - 1, 12));
        return value;
    }

    void readCell()
    {
        if (m_cells.size() >= mostCells)
            m_xml.raiseError(QStringLiteral("в строке таблицы слишком много ячеек"));
        m_cells.append(m_xml.readElementText());
    }

    /// The cells of the row but for those of the given columns; empty where they have no text.
    QStringList othersOf(std::initializer_list<int> known) const
    {
        QStringList cells;
        for (int i = m_cells.size() - 1; i >= 0; --i) {
            const bool isOther =
                std::find(known.begin(), known.end(), i) == known.end() && !m_cells.at(i).isEmpty();
            if (isOther && cells.isEmpty())
                cells = QVector<QString>(i + 1).toList();
            if (isOther)
                cells[i] = m_cells.at(i);
        }
        return cells;
    }

    QXmlStreamReader& m_xml;
    FormTable& m_table;
    const GeometryInfo m_columns;
    QStringList m_cells;
    bool m_hasOthers = false;
};

std::optional<FormError> read(QXmlStreamReader& xml, const GeometryInfo& columns, FormTable& table)
{
    table = FormTable();
    table.columns = columns;
    return FormReader(xml, table).read();
}

} // namespace

std::optional<FormError> readForm(QIODevice& device, const GeometryInfo& columns, FormTable& table)
{
    QXmlStreamReader xml(&device);
    return read(xml, columns, table);
}

std::optional<FormError> readForm(const QString& xml, const GeometryInfo& columns, FormTable& table)
{
    QXmlStreamReader reader(xml);
    return read(reader, columns, table);
}
