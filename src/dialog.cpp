#include "dialog.h"

#include "geometry/designation.h"
#include "import/formats.h"
#include "import/mapimport.h"
#include "resultwriter.h"
#include "sizecachingdelegate.h"
#include "status.h"
#include "ui_dialog.h"

#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QScopedValueRollback>
#include <QSettings>
#include <QXmlStreamWriter>

#include <algorithm>

namespace {

constexpr int maxFieldCount = 5;
const QString settingsGroup = QStringLiteral("ImportObjects");

/// Shows the wait cursor as long as it lives.
class WaitCursor {
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    Q_DISABLE_COPY(WaitCursor)
};

} // namespace

Dialog::Dialog(QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui_Dialog>())
    , m_format(&formats().front())
{
    m_ui->setupUi(this);
    equalizeToolButtons();
    readSettings();
    connect(m_ui->buttonBox, SIGNAL(accepted()), this, SLOT(accept()));
    connect(m_ui->buttonBox, SIGNAL(rejected()), this, SLOT(reject()));
    m_ui->swapXYCheck->setVisible(false);
    m_ui->listView->setItemDelegate(new SizeCachingDelegate(m_ui->listView));
}

Dialog::~Dialog()
{
    guarded([this] { writeSettings(); });
}

void Dialog::setUp(const Format& format, const QString& contextName, const QString& tableName,
    const QString& catalogueTableName, const GeometryInfo& info)
{
    m_format = &format;
    m_contextName = contextName;
    m_tableName = tableName;
    m_catalogueTableName = catalogueTableName;
    m_info = info;
    m_polygonModel.setNxyColNum(info.nColNum, info.xColNum, info.yColNum);
}

QString Dialog::stringResult()
{
    ResultOptions options;
    options.tableName = m_tableName;
    options.catalogueTableName = m_catalogueTableName;
    options.update = m_ui->updateCheck->isChecked();
    options.info = m_info;
    options.fields = m_fieldNumValueMap;

    QString result;
    QXmlStreamWriter writer(&result);
    writer.setAutoFormatting(true);
    writeResult(writer, m_objects, options);
    return result;
}

void Dialog::equalizeToolButtons()
{
    QFont font = m_ui->plusToolButton->font();
    if (font.pointSize() >= 1)
        font.setPointSize(font.pointSize() + 1);
    else if (font.pixelSize() >= 1)
        font.setPixelSize(font.pixelSize() + 1);
    m_ui->plusToolButton->setFont(font);
    m_ui->minusToolButton->setFont(font);
    m_ui->minusToolButton->setFixedWidth(m_ui->plusToolButton->sizeHint().width());
}

// Files

void Dialog::on_objectFileButton_clicked()
{
    guarded([this] { chooseFile(m_ui->objectFileNameEdit); });
}

void Dialog::on_pointFileButton_clicked()
{
    guarded([this] { chooseFile(m_ui->pointFileNameEdit); });
}

void Dialog::chooseFile(QLineEdit* edit)
{
    const QString name = QFileDialog::getOpenFileName(
        this, QStringLiteral("Выбрать файл"), m_lastPath, m_format->filter);
    if (name.isEmpty())
        return;
    m_lastPath = name;
    edit->setText(QDir::toNativeSeparators(name));
}

void Dialog::on_objectFileNameEdit_textChanged(const QString& arg1)
{
    guarded([&] { m_ui->startButton->setEnabled(!arg1.isEmpty()); });
}

void Dialog::on_usePointFileCheck_toggled(bool checked)
{
    guarded([&] {
        m_ui->pointFileLabel->setVisible(checked);
        m_ui->pointFileNameEdit->setVisible(checked);
        m_ui->pointFileButton->setVisible(checked);
        m_ui->objectFileLabel->setText(checked
                ? QCoreApplication::translate("Dialog", "Файл объектов:")
                : QCoreApplication::translate("Dialog", "Файл:"));
    });
}

// Import

void Dialog::on_startButton_clicked()
{
    if (m_importing)
        return;
    const QScopedValueRollback<bool> importing(m_importing, true);
    guarded([this] {
        const WaitCursor waitCursor;
        // What a failed import has built is shown like any other result.
        guarded([this] { importObjects(); });
        showObjects();
    });
}

void Dialog::importObjects()
{
    // The models must not look at objects while they come and go.
    m_polygonModel.setPolygon(nullptr);
    m_mapModel.setMap(nullptr);
    m_objects.clear();
    m_fieldNumValueMap.clear();
    const std::unique_ptr<MapImport> importer = m_format->makeImporter();
    importer->setOptions(importOptions());
    importer->map = &m_objects;
    importer->importMap();
}

ImportOptions Dialog::importOptions() const
{
    ImportOptions options;
    options.objectFileName = m_ui->objectFileNameEdit->text();
    if (m_ui->usePointFileCheck->isChecked())
        options.pointFileName = m_ui->pointFileNameEdit->text();
    options.searchPointDefs = m_ui->searchPointDefsCheck->isChecked();
    options.pointPref = m_ui->pointPrefEdit->text();
    options.pointStartNum = m_ui->pointStartNumSpin->value();
    options.searchObjectDefs = m_ui->searchObjectDefsCheck->isChecked();
    options.objectPref = m_ui->objectPrefEdit->text();
    options.objectStartNum = m_ui->objectStartNumSpin->value();
    options.encoding = m_ui->encodingCombo->currentText().toLatin1();
    return options;
}

void Dialog::showObjects()
{
    if (m_objects.isEmpty()) {
        m_mapModel.setMap(&m_objects);
        return;
    }
    readFields();
    showPolygon(&m_objects.first());
    m_mapModel.setMap(&m_objects);
    m_ui->listView->setModel(&m_mapModel);
    m_ui->tableView->setModel(&m_polygonModel);
    connect(m_ui->listView->selectionModel(), &QItemSelectionModel::currentChanged, this,
        &Dialog::procCurrentChanged, Qt::UniqueConnection);
}

void Dialog::showPolygon(DefPolygon* polygon)
{
    const int columnCount = m_polygonModel.columnCount();
    m_polygonModel.setPolygon(polygon);
    m_polygonModel.setFieldNumValueMap(m_fieldNumValueMap);
    // The extra fields widen the table without a signal: only a reset shows the new columns.
    if (m_polygonModel.columnCount() != columnCount)
        m_polygonModel.setPolygon(polygon);
}

void Dialog::procCurrentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    Q_UNUSED(previous)
    if (!current.isValid())
        return;
    guarded([&] { showPolygon(&m_objects[current.row()]); });
}

void Dialog::on_sortButton_clicked()
{
    if (m_importing)
        return;
    guarded([this] {
        m_polygonModel.setPolygon(nullptr);
        m_mapModel.setMap(nullptr);
        sortObjects(m_objects);
    });
    guarded([this] {
        m_mapModel.setMap(&m_objects);
        if (!m_objects.isEmpty())
            showPolygon(&m_objects.first());
    });
}

// Extra fields

Dialog::FieldRow Dialog::fieldRow(int row) const
{
    return { findChild<QSpinBox*>(QStringLiteral("fieldSpin_%1").arg(row)),
        findChild<QLineEdit*>(QStringLiteral("fieldEdit_%1").arg(row)) };
}

void Dialog::readFields()
{
    m_fieldNumValueMap.clear();
    for (int i = 0; i < maxFieldCount; ++i) {
        const FieldRow row = fieldRow(i);
        if (!row)
            return;
        if (!row.edit->text().isEmpty())
            m_fieldNumValueMap.insert(row.spin->value() - 1, row.edit->text());
    }
}

void Dialog::writeFields()
{
    int i = 0;
    for (auto it = m_fieldNumValueMap.cbegin();
         it != m_fieldNumValueMap.cend() && i < maxFieldCount; ++it, ++i) {
        if (!fieldRow(i))
            on_plusToolButton_clicked();
        const FieldRow row = fieldRow(i);
        if (!row)
            return;
        row.spin->setValue(std::min(it.key(), row.spin->maximum() - 1) + 1);
        row.edit->setText(it.value());
    }
}

void Dialog::on_plusToolButton_clicked()
{
    guarded([this] {
        if (m_fieldCount >= maxFieldCount)
            return;
        const QSpinBox* last = fieldRow(m_fieldCount - 1).spin;
        if (!last)
            return;

        auto* spin = new QSpinBox(this);
        spin->setObjectName(QStringLiteral("fieldSpin_%1").arg(m_fieldCount));
        spin->setValue(last->value() + 1);
        spin->setMaximum(last->maximum());
        spin->setMinimum(last->minimum());
        m_ui->horizontalLayout_7->addWidget(spin);

        auto* edit = new QLineEdit(this);
        edit->setObjectName(QStringLiteral("fieldEdit_%1").arg(m_fieldCount));
        m_ui->horizontalLayout_7->addWidget(edit);
        ++m_fieldCount;
    });
}

void Dialog::on_minusToolButton_clicked()
{
    guarded([this] {
        if (m_fieldCount <= 1)
            return;
        const FieldRow row = fieldRow(m_fieldCount - 1);
        --m_fieldCount;
        delete row.spin;
        delete row.edit;
    });
}

// Settings

void Dialog::readSettings()
{
    QSettings settings;
    settings.beginGroup(settingsGroup);
    const auto value = [&settings](const char* key, const QVariant& absent) {
        return settings.value(QLatin1String(key), absent);
    };
    resize(value("size", QSize(400, 600)).toSize());
    const QByteArray splitterSizes = value("splitterSizes", QByteArray()).toByteArray();
    if (!splitterSizes.isEmpty())
        m_ui->splitter->restoreState(splitterSizes);
    m_lastPath = value("lastPath", QString()).toString();
    m_ui->searchPointDefsCheck->setChecked(value("searchPointDefs", true).toBool());
    m_ui->pointPrefEdit->setText(value("pointPref", QStringLiteral("н")).toString());
    m_ui->pointStartNumSpin->setValue(value("pointStartNum", 1).toInt());
    m_ui->searchObjectDefsCheck->setChecked(value("searchObjectDefs", true).toBool());
    m_ui->objectPrefEdit->setText(value("objectPref", QStringLiteral(":ЗУ")).toString());
    m_ui->objectStartNumSpin->setValue(value("objectStartNum", 1).toInt());
    m_ui->usePointFileCheck->setChecked(value("usePointFile", false).toBool());
    m_ui->updateCheck->setChecked(value("update", false).toBool());
    loadFieldMap(settings, m_fieldNumValueMap);
    writeFields();
    settings.endGroup();
}

void Dialog::writeSettings()
{
    QSettings settings;
    settings.beginGroup(settingsGroup);
    const auto setValue = [&settings](const char* key, const QVariant& value) {
        settings.setValue(QLatin1String(key), value);
    };
    setValue("size", size());
    setValue("splitterSizes", m_ui->splitter->saveState());
    setValue("lastPath", m_lastPath);
    setValue("searchPointDefs", m_ui->searchPointDefsCheck->isChecked());
    setValue("pointPref", m_ui->pointPrefEdit->text());
    setValue("pointStartNum", m_ui->pointStartNumSpin->value());
    setValue("searchObjectDefs", m_ui->searchObjectDefsCheck->isChecked());
    setValue("objectPref", m_ui->objectPrefEdit->text());
    setValue("objectStartNum", m_ui->objectStartNumSpin->value());
    setValue("usePointFile", m_ui->usePointFileCheck->isChecked());
    setValue("update", m_ui->updateCheck->isChecked());
    readFields();
    saveFieldMap(settings, m_fieldNumValueMap);
    settings.endGroup();
}
