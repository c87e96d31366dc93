#pragma once

#include <QAbstractTableModel>
#include <QBitArray>
#include <QStringList>
#include <QVector>

class Document;
struct DefPoint;

/// The coordinate catalogue of one object, with an empty row between contours. Designations can be
/// edited.
class CatalogueModel : public QAbstractTableModel {
    Q_OBJECT

public:
    /// A vertex of the object; contour -1 on a row between contours.
    struct Place {
        int contour = -1;
        int vertex = -1;
    };

    /// `document` must outlive the model.
    explicit CatalogueModel(Document& document, QObject* parent = nullptr);

    int object() const { return m_object; } ///< zero-based; -1 for none
    void setObject(int object);
    /// The titles of the columns, from the first one; others get their number.
    void setTitles(const QStringList& titles);

    Place placeOf(int row) const;
    int rowOf(const Place& place) const;
    /// The rows as text, cells parted by tabs, under their titles.
    QString asText(const QVector<int>& rows) const;
    /// The same as a table in HTML.
    QString asHtml(const QVector<int>& rows) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    const DefPoint& pointAt(const Place& place) const;
    QString cell(int row, int column) const;
    void reset(int object);
    void renamed(int object, int contour, int vertex);

    Document& m_document;
    int m_object = -1;
    QVector<int> m_starts; ///< the row at which each contour starts, and one past the last row
    QBitArray m_conflicts; ///< of the vertices through all contours
    QStringList m_titles;
    int m_columns = 0;
};
