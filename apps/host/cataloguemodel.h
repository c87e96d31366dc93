#pragma once

#include "cataloguerows.h"

#include <QAbstractTableModel>
#include <QBitArray>
#include <QStringList>

class Document;

/// The coordinate catalogue of one object, with an empty row between contours. Designations can be
/// edited.
class CatalogueModel : public QAbstractTableModel {
    Q_OBJECT

public:
    using Place = CatalogueRows::Place;

    /// `document` must outlive the model.
    explicit CatalogueModel(Document& document, QObject* parent = nullptr);

    int object() const { return m_object; } ///< zero-based; -1 for none
    void setObject(int object);
    /// The titles of the columns, from the first one; others get their number.
    void setTitles(const QStringList& titles);

    Place placeOf(int row) const { return m_rows.placeOf(row); }
    int rowOf(const Place& place) const { return m_rows.rowOf(place); }
    /// What other programs get of the rows as they are now.
    CatalogueText text() const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    void reset(int object);
    void renamed(int object, int contour, int vertex);

    Document& m_document;
    int m_object = -1;
    CatalogueRows m_rows;
    QBitArray m_conflicts; ///< of the vertices through all contours
    QStringList m_titles;
    int m_columns = 0;
};
