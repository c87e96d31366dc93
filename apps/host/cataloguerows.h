#pragma once

#include "formtable.h"

#include <QStringList>
#include <QVector>

#include <atomic>

/// The rows of the catalogue of one object: its vertices, with an empty row between contours.
class CatalogueRows {
public:
    /// A vertex of the object; contour -1 on a row between contours.
    struct Place {
        int contour = -1;
        int vertex = -1;
    };

    CatalogueRows() = default;
    explicit CatalogueRows(const DefPolygon& object);

    int count() const;
    /// A row that is not there is nowhere.
    Place placeOf(int row) const;
    int rowOf(const Place& place) const { return m_starts.value(place.contour) + place.vertex; }

private:
    QVector<int> m_starts; ///< the row at which each contour starts, and one past the last row
};

/// The text of a cell of the catalogue of an object; none on a row between contours.
QString catalogueCell(
    const FormTable& table, int object, const CatalogueRows& rows, int row, int column);

/// Rows of a catalogue as texts for other programs. It keeps what it needs, so that a thread can
/// write them.
class CatalogueText {
public:
    /// The titles are those of the columns.
    CatalogueText(FormTable table, int object, QStringList titles);

    int rowCount() const { return m_rows.count(); }
    /// The rows below the titles, cells parted by tabs. Nothing of use once `cancelled`.
    QString plain(const QVector<int>& rows, const std::atomic_bool& cancelled) const;
    /// The same as a table in HTML.
    QString html(const QVector<int>& rows, const std::atomic_bool& cancelled) const;

private:
    template <typename AddRow>
    void eachRow(const QVector<int>& rows, const std::atomic_bool& cancelled, AddRow addRow) const;

    const FormTable m_table;
    const int m_object;
    const QStringList m_titles;
    const CatalogueRows m_rows;
};
