#pragma once

#include "geometry/defpoint.h"

#include <QMap>
#include <QString>
#include <QVector>

/// The extra fields: constant texts by zero-based column of the host's form table.
using FieldNumValueMap = QMap<int, QString>;

/// What a cell in the row of a vertex holds.
enum class CellContent { Nothing, Designation, X, Y, Field };

/// What each column of an object's coordinate catalogue holds: the designation, x and y in the
/// columns that the host gave, the extra fields in theirs, nothing in all others. Where several
/// meet in one column, the first of these wins. Columns are zero-based.
class CatalogueColumns {
public:
    /// Sets the columns of designation, x and y; a negative column is never met.
    void setNxyColNum(int n, int x, int y);
    /// Sets the extra fields.
    void setFieldNumValueMap(const FieldNumValueMap& fields);

    /// Every column set so far counts, and at least three: a catalogue never loses columns.
    int count() const { return m_maxColNum + 1; }
    bool isDesignation(int column) const { return column == m_nColNum; }
    CellContent content(int column) const;
    /// The columns that hold something, in order; every other one is empty in all rows.
    QVector<int> filledColumns() const;
    /// The extra field of the column; null where there is none.
    QString field(int column) const { return m_fieldNumValueMap.value(column); }
    /// The text of the vertex in the column, coordinates in the user's locale or the C locale; null
    /// where there is none.
    QString text(const DefPoint& point, int column, bool userLocale) const;

private:
    void widenTo(int column);

    int m_nColNum = 0;
    int m_xColNum = 1;
    int m_yColNum = 2;
    int m_maxColNum = 2;
    FieldNumValueMap m_fieldNumValueMap;
};
