#include "dialog.h"

#include "dialogsettings.h"
#include "fieldrows.h"
#include "geometry/designation.h"
#include "import/formats.h"
#include "import/mapimport.h"
#include "resultwriter.h"
#include "sizecachingdelegate.h"
#include "status.h"
#include "ui_dialog.h"
#include "waitcursor.h"

#include <QDir>
#include <QFileDialog>
#include <QScopedValueRollback>
#include <QSettings>

#include <algorithm>

namespace {

const QString settingsGroup = QStringLiteral("ImportObjects");
/// More than any screen has; the picture of a larger window has no room in memory, and Qt does not
/// get over that.
constexpr QSize largestSize(10000, 10000);

/// Shows failures to the user as they happen. The host may open a window for them, which wants the
/// usual pointer.
class ShownFailures : public ImportObserver {
public:
    void failed(const ImportFailure& failure) override
    {
        const WaitCursorPause pause;
        ImportObserver::failed(failure);
    }
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
    return resultText(m_objects, options);
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
    // A message may let events in: until the import is over, the views keep the earlier objects.
    QVector<DefPolygon> objects;
    guarded([&] { importObjects(objects); });
    // What a failed import has built is shown like any other result.
    guarded([&] { showImported(objects); });
}

void Dialog::importObjects(QVector<DefPolygon>& objects)
{
    const WaitCursor waitCursor;
    ShownFailures failures;
    const std::unique_ptr<MapImport> importer = m_format->makeImporter();
    importer->setOptions(importOptions());
    importer->observer = &failures;
    importer->map = &objects;
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

void Dialog::showImported(QVector<DefPolygon>& objects)
{
    const WaitCursor waitCursor;
    m_fieldNumValueMap.clear();
    if (!objects.isEmpty())
        readFields();
    exchangeObjects(objects);
    if (m_objects.isEmpty())
        return;
    m_ui->listView->setModel(&m_mapModel);
    m_ui->tableView->setModel(&m_polygonModel);
    connect(m_ui->listView->selectionModel(), &QItemSelectionModel::currentChanged, this,
        &Dialog::procCurrentChanged, Qt::UniqueConnection);
}

void Dialog::exchangeObjects(QVector<DefPolygon>& objects)
{
    // One reset takes a model from objects that are still there to others: on the way through an
    // empty table the headers would forget the sizes that the user gave to rows.
    m_objects.swap(objects);
    showPolygon(m_objects.isEmpty() ? nullptr : &m_objects.first());
    m_mapModel.setMap(&m_objects);
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
        QVector<DefPolygon> objects = m_objects;
        sortObjects(objects);
        exchangeObjects(objects);
    });
}

// Extra fields

void Dialog::readFields()
{
    m_fieldNumValueMap = shownFields(*this);
}

void Dialog::writeFields()
{
    int i = 0;
    for (auto it = m_fieldNumValueMap.cbegin();
         it != m_fieldNumValueMap.cend() && i < maxFieldCount; ++it, ++i) {
        if (!fieldRow(*this, i))
            on_plusToolButton_clicked();
        const FieldRow row = fieldRow(*this, i);
        if (!row)
            return;
        row.spin->setValue(std::min(it.key(), row.spin->maximum() - 1) + 1);
        row.edit->setText(it.value());
    }
}

void Dialog::on_plusToolButton_clicked()
{
    guarded([this] {
        if (m_fieldCount < maxFieldCount
            && addFieldRow(*this, *m_ui->horizontalLayout_7, m_fieldCount))
            ++m_fieldCount;
    });
}

void Dialog::on_minusToolButton_clicked()
{
    guarded([this] {
        if (m_fieldCount > 1)
            removeFieldRow(*this, --m_fieldCount);
    });
}

// Settings

std::vector<Setting> Dialog::settings()
{
    const ImportOptions offered = ImportOptions::offered();
    const auto setSplitter = [this](const QVariant& value) {
        const QByteArray state = value.toByteArray();
        if (!state.isEmpty())
            m_ui->splitter->restoreState(state);
    };
    return {
        { "size", QSize(400, 600),
            [this](const QVariant& value) { resize(value.toSize().boundedTo(largestSize)); },
            [this] { return QVariant(size()); } },
        { "splitterSizes", QByteArray(), setSplitter,
            [this] { return QVariant(m_ui->splitter->saveState()); } },
        { "lastPath", QString(), [this](const QVariant& value) { m_lastPath = value.toString(); },
            [this] { return QVariant(m_lastPath); } },
        widgetSetting("searchPointDefs", m_ui->searchPointDefsCheck, offered.searchPointDefs),
        widgetSetting("pointPref", m_ui->pointPrefEdit, offered.pointPref),
        widgetSetting("pointStartNum", m_ui->pointStartNumSpin, offered.pointStartNum),
        widgetSetting("searchObjectDefs", m_ui->searchObjectDefsCheck, offered.searchObjectDefs),
        widgetSetting("objectPref", m_ui->objectPrefEdit, offered.objectPref),
        widgetSetting("objectStartNum", m_ui->objectStartNumSpin, offered.objectStartNum),
        widgetSetting("usePointFile", m_ui->usePointFileCheck, false),
        widgetSetting("update", m_ui->updateCheck, false),
    };
}

void Dialog::readSettings()
{
    QSettings store;
    store.beginGroup(settingsGroup);
    loadSettings(store, settings());
    loadFieldMap(store, m_fieldNumValueMap);
    writeFields();
    store.endGroup();
}

void Dialog::writeSettings()
{
    QSettings store;
    store.beginGroup(settingsGroup);
    saveSettings(store, settings());
    readFields();
    saveFieldMap(store, m_fieldNumValueMap);
    store.endGroup();
}
