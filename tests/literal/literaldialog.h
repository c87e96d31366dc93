#pragma once

#include "fieldnumvaluemap.h"
#include "importgeometryinterface.h"
#include "literal/literalmodels.h"

#include <QDialog>
#include <QString>
#include <QVector>

#include <memory>

struct Format;
class QLineEdit;
class Ui_Dialog;

namespace literal {

/// The dialog written step by step with plain parts: models that look everything up anew, Qt's own
/// delegates, the collection filled in place.
///
/// Where the steps leave a choice it is the product's: a sort shows the first object, an import of
/// nothing shows nothing, and further columns are shown at once.
class Dialog : public QDialog {
    Q_OBJECT

public:
    Dialog();
    ~Dialog() override;

    void setUp(const Format& format, const GeometryInfo& info);

private slots:
    void on_startButton_clicked();
    void on_usePointFileCheck_toggled(bool checked);
    void on_plusToolButton_clicked();
    void on_minusToolButton_clicked();
    void procCurrentChanged(const QModelIndex& current, const QModelIndex& previous);
    void on_sortButton_clicked();
    void on_objectFileNameEdit_textChanged(const QString& arg1);

private:
    void readSettings();
    void writeSettings();
    void readFields();
    void writeFields();
    void showPolygon(DefPolygon* polygon);

    std::unique_ptr<Ui_Dialog> m_ui;
    QString m_lastPath;
    QVector<DefPolygon> m_objects;
    CatalogueModel m_polygonModel;
    ObjectModel m_mapModel;
    const Format* m_format = nullptr;
    FieldNumValueMap m_fieldNumValueMap;
    int m_fieldCount = 1;
};

} // namespace literal
