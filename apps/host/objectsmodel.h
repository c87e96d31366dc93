#pragma once

#include <QAbstractTableModel>

class Document;

/// The objects of the form: designation and number of points. Designations can be edited.
class ObjectsModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { Designation, Points, ColumnCount };

    /// `document` must outlive the model.
    explicit ObjectsModel(Document& document, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// The next object after `from` whose designation contains the text, whatever the case of its
    /// letters, going round; -1 where there is none.
    int find(const QString& text, int from, bool backwards) const;

private:
    void renamed(int object);

    Document& m_document;
};
