#pragma once

#include "fieldnumvaluemap.h"
#include "geometry/defpolygon.h"
#include "importgeometryinterface.h"
#include "models/defmaptablemodel.h"
#include "models/defpolygontablemodel.h"

#include <QDialog>
#include <QString>
#include <QVector>

#include <memory>
#include <vector>

struct Format;
struct ImportOptions;
struct Setting;
class Ui_Dialog;
class QLineEdit;

/// The modal window of one import: takes the files and options, shows the imported objects with
/// their catalogues for inspection and editing, and gives the result.
///
/// The form's state is restored from the host application's settings when the dialog is made and
/// stored when it goes, whatever its outcome.
class Dialog : public QDialog {
    Q_OBJECT

public:
    /// Builds the form and restores its state from the settings.
    explicit Dialog(QWidget* parent = nullptr);
    ~Dialog() override;

    /// Takes over what the host said about this import, before the dialog is run.
    void setUp(const Format& format, const QString& contextName, const QString& tableName,
        const QString& catalogueTableName, const GeometryInfo& info);

    /// The result XML of the objects as they stand; never null.
    QString stringResult();

private slots:
    void on_objectFileButton_clicked();
    void on_pointFileButton_clicked();
    void on_startButton_clicked();
    void on_usePointFileCheck_toggled(bool checked);
    void on_plusToolButton_clicked();
    void on_minusToolButton_clicked();
    void procCurrentChanged(const QModelIndex& current, const QModelIndex& previous);
    void on_sortButton_clicked();
    void on_objectFileNameEdit_textChanged(const QString& arg1);

private:
    void equalizeToolButtons();
    std::vector<Setting> settings();
    void readSettings();
    void writeSettings();
    void readFields();
    void writeFields();
    void chooseFile(QLineEdit* edit);
    void importObjects(QVector<DefPolygon>& objects);
    ImportOptions importOptions() const;
    void showImported(QVector<DefPolygon>& objects);
    void exchangeObjects(QVector<DefPolygon>& objects);
    void showPolygon(DefPolygon* polygon);

    std::unique_ptr<Ui_Dialog> m_ui;
    QString m_lastPath; ///< the file last chosen, as the file dialog returned it
    QVector<DefPolygon> m_objects;
    DefPolygonTableModel m_polygonModel; ///< the catalogue of one of m_objects
    DefMapTableModel m_mapModel; ///< the list of m_objects
    const Format* m_format; ///< what is imported; never null
    GeometryInfo m_info{ 0, 2, 1, 0 };
    QString m_contextName;
    QString m_tableName;
    QString m_catalogueTableName;
    FieldNumValueMap m_fieldNumValueMap; ///< the extra fields, as of the last import
    int m_fieldCount = 1; ///< number of extra-field rows in the form
    bool m_importing = false; ///< a host's callback may let events in during an import
};
