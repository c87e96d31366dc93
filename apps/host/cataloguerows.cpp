#include "cataloguerows.h"

#include <QLocale>

#include <algorithm>
#include <utility>

CatalogueRows::CatalogueRows(const DefPolygon& object)
{
    int row = 0;
    for (const QVector<DefPoint>& contour : object.contours) {
        m_starts.append(row);
        row += contour.size() + 1;
    }
    m_starts.append(row);
}

int CatalogueRows::count() const
{
    // No row stands behind the last contour.
    return m_starts.size() < 2 ? 0 : m_starts.last() - 1;
}

CatalogueRows::Place CatalogueRows::placeOf(int row) const
{
    if (row < 0 || row >= count())
        return {};
    const int contour = static_cast<int>(
        std::upper_bound(m_starts.cbegin(), m_starts.cend(), row) - m_starts.cbegin() - 1);
    const int vertex = row - m_starts.at(contour);
    const bool isBetween = row + 1 == m_starts.at(contour + 1);
    return isBetween ? Place() : Place{ contour, vertex };
}

QString catalogueCell(
    const FormTable& table, int object, const CatalogueRows& rows, int row, int column)
{
    const CatalogueRows::Place place = rows.placeOf(row);
    if (place.contour < 0)
        return {};
    const DefPoint& point = table.objects.at(object).contours.at(place.contour).at(place.vertex);
    const auto number = [&table](double value) {
        return QLocale().toString(value, 'f', table.decimals);
    };
    if (column == table.columns.nColNum)
        return point.def;
    if (column == table.columns.xColNum)
        return number(point.x);
    if (column == table.columns.yColNum)
        return number(point.y);
    // A row for each vertex, and one for each contour before.
    return table.others.at(object).points.value(row - place.contour).value(column);
}

CatalogueText::CatalogueText(FormTable table, int object, QStringList titles)
    : m_table(std::move(table))
    , m_object(object)
    , m_titles(std::move(titles))
    , m_rows(object < 0 ? DefPolygon() : m_table.objects.at(object))
{
}

template <typename AddRow>
void CatalogueText::eachRow(
    const QVector<int>& rows, const std::atomic_bool& cancelled, AddRow addRow) const
{
    for (const int row : rows) {
        if (cancelled)
            return;
        QStringList cells;
        for (int column = 0; column < m_titles.size(); ++column)
            cells.append(catalogueCell(m_table, m_object, m_rows, row, column));
        addRow(cells);
    }
}

QString CatalogueText::plain(const QVector<int>& rows, const std::atomic_bool& cancelled) const
{
    QString text;
    const auto addRow = [&text](QStringList cells) {
        // A tab or a break within a text would move the cells behind it.
        for (QString& cell : cells)
            cell = cell.simplified();
        text += cells.join(QLatin1Char('\t')) + QLatin1Char('\n');
    };
    addRow(m_titles);
    eachRow(rows, cancelled, addRow);
    return text;
}

QString CatalogueText::html(const QVector<int>& rows, const std::atomic_bool& cancelled) const
{
    QString html = QStringLiteral("<table border=\"1\">");
    const auto addRow = [&html](const char* tag, const QStringList& cells) {
        html += QLatin1String("<tr>");
        for (const QString& cell : cells) {
            html += QStringLiteral("<%1>%2</%1>").arg(QLatin1String(tag), cell.toHtmlEscaped());
        }
        html += QLatin1String("</tr>\n");
    };
    addRow("th", m_titles);
    eachRow(rows, cancelled, [&addRow](const QStringList& cells) { addRow("td", cells); });
    return html + QLatin1String("</table>");
}
