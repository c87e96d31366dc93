#include "literal/literaldialog.h"

#include "import/formats.h"
#include "import/mapimport.h"
#include "literal/literalgeometry.h"
#include "ui_dialog.h"

#include <QSettings>

namespace literal {

Dialog::Dialog()
    : m_ui(std::make_unique<Ui_Dialog>())
{
    m_ui->setupUi(this);
    QFont font = m_ui->plusToolButton->font();
    if (font.pointSize() >= 1)
        font.setPointSize(font.pointSize() + 1);
    else if (font.pixelSize() >= 1)
        font.setPixelSize(font.pixelSize() + 1);
    m_ui->plusToolButton->setFont(font);
    m_ui->minusToolButton->setFont(font);
    m_ui->minusToolButton->setFixedWidth(m_ui->plusToolButton->sizeHint().width());
    readSettings();
    connect(m_ui->buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_ui->buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
    m_ui->swapXYCheck->setVisible(false);
}

Dialog::~Dialog()
{
    writeSettings();
}

void Dialog::setUp(const Format& format, const GeometryInfo& info)
{
    m_format = &format;
    m_polygonModel.setNxyColNum(info.nColNum, info.xColNum, info.yColNum);
}

void Dialog::on_objectFileNameEdit_textChanged(const QString& arg1)
{
    m_ui->startButton->setEnabled(!arg1.isEmpty());
}

void Dialog::on_usePointFileCheck_toggled(bool checked)
{
    m_ui->pointFileLabel->setVisible(checked);
    m_ui->pointFileNameEdit->setVisible(checked);
    m_ui->pointFileButton->setVisible(checked);
    m_ui->objectFileLabel->setText(
        checked ? QStringLiteral("Файл объектов:") : QStringLiteral("Файл:"));
}

void Dialog::on_startButton_clicked()
{
    m_objects.clear();
    m_fieldNumValueMap.clear();
    const std::unique_ptr<MapImport> importer = m_format->makeImporter();
    importer->objectFileName = m_ui->objectFileNameEdit->text();
    if (m_ui->usePointFileCheck->isChecked())
        importer->pointFileName = m_ui->pointFileNameEdit->text();
    importer->searchPointDefs = m_ui->searchPointDefsCheck->isChecked();
    importer->pointPref = m_ui->pointPrefEdit->text();
    importer->pointStartNum = m_ui->pointStartNumSpin->value();
    importer->searchObjectDefs = m_ui->searchObjectDefsCheck->isChecked();
    importer->objectPref = m_ui->objectPrefEdit->text();
    importer->objectStartNum = m_ui->objectStartNumSpin->value();
    importer->setEncoding(m_ui->encodingCombo->currentText().toLatin1());
    importer->map = &m_objects;
    importer->importMap();
    if (m_objects.isEmpty()) {
        m_polygonModel.setPolygon(nullptr);
        m_mapModel.setMap(&m_objects);
        return;
    }
    readFields();
    showPolygon(&m_objects.first());
    m_mapModel.setMap(&m_objects);
    m_ui->listView->setModel(&m_mapModel);
    m_ui->tableView->setModel(&m_polygonModel);
    connect(m_ui->listView->selectionModel(), &QItemSelectionModel::currentChanged, this,
        &Dialog::procCurrentChanged);
}

void Dialog::showPolygon(DefPolygon* polygon)
{
    const int columns = m_polygonModel.columnCount();
    m_polygonModel.setPolygon(polygon);
    m_polygonModel.setFieldNumValueMap(m_fieldNumValueMap);
    if (m_polygonModel.columnCount() > columns)
        m_polygonModel.setPolygon(polygon);
}

void Dialog::procCurrentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    Q_UNUSED(previous)
    if (current.isValid())
        showPolygon(&m_objects[current.row()]);
}

void Dialog::on_sortButton_clicked()
{
    literal::sortObjects(m_objects);
    m_mapModel.setMap(&m_objects);
    if (!m_objects.isEmpty())
        showPolygon(&m_objects.first());
}

void Dialog::readFields()
{
    m_fieldNumValueMap.clear();
    for (int i = 0; i <= 4; ++i) {
        const auto* spin = findChild<QSpinBox*>(QStringLiteral("fieldSpin_%1").arg(i));
        const auto* edit = findChild<QLineEdit*>(QStringLiteral("fieldEdit_%1").arg(i));
        if (!spin || !edit)
            break;
        if (!edit->text().isEmpty())
            m_fieldNumValueMap[spin->value() - 1] = edit->text();
    }
}

void Dialog::writeFields()
{
    const QList<int> keys = m_fieldNumValueMap.keys();
    for (int i = 0; i < 5 && i < keys.size(); ++i) {
        const QString spinName = QStringLiteral("fieldSpin_%1").arg(i);
        const QString editName = QStringLiteral("fieldEdit_%1").arg(i);
        if (!findChild<QSpinBox*>(spinName) || !findChild<QLineEdit*>(editName))
            on_plusToolButton_clicked();
        auto* spin = findChild<QSpinBox*>(spinName);
        auto* edit = findChild<QLineEdit*>(editName);
        if (!spin || !edit)
            break;
        spin->setValue(keys.at(i) + 1);
        edit->setText(m_fieldNumValueMap.value(keys.at(i)));
    }
}

void Dialog::on_plusToolButton_clicked()
{
    if (m_fieldCount >= 5)
        return;
    const auto* last = findChild<QSpinBox*>(QStringLiteral("fieldSpin_%1").arg(m_fieldCount - 1));
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
    setTabOrder(findChild<QLineEdit*>(QStringLiteral("fieldEdit_%1").arg(m_fieldCount - 1)), spin);
    setTabOrder(spin, edit);
    ++m_fieldCount;
}

void Dialog::on_minusToolButton_clicked()
{
    if (m_fieldCount == 1)
        return;
    --m_fieldCount;
    delete findChild<QSpinBox*>(QStringLiteral("fieldSpin_%1").arg(m_fieldCount));
    delete findChild<QLineEdit*>(QStringLiteral("fieldEdit_%1").arg(m_fieldCount));
}

void Dialog::readSettings()
{
    QSettings s;
    s.beginGroup(QStringLiteral("ImportObjects"));
    resize(s.value(QStringLiteral("size"), QSize(400, 600)).toSize());
    const QByteArray splitter = s.value(QStringLiteral("splitterSizes")).toByteArray();
    if (!splitter.isEmpty())
        m_ui->splitter->restoreState(splitter);
    m_lastPath = s.value(QStringLiteral("lastPath")).toString();
    m_ui->searchPointDefsCheck->setChecked(
        s.value(QStringLiteral("searchPointDefs"), true).toBool());
    m_ui->pointPrefEdit->setText(
        s.value(QStringLiteral("pointPref"), QStringLiteral("н")).toString());
    m_ui->pointStartNumSpin->setValue(s.value(QStringLiteral("pointStartNum"), 1).toInt());
    m_ui->searchObjectDefsCheck->setChecked(
        s.value(QStringLiteral("searchObjectDefs"), true).toBool());
    m_ui->objectPrefEdit->setText(
        s.value(QStringLiteral("objectPref"), QStringLiteral(":ЗУ")).toString());
    m_ui->objectStartNumSpin->setValue(s.value(QStringLiteral("objectStartNum"), 1).toInt());
    m_ui->usePointFileCheck->setChecked(s.value(QStringLiteral("usePointFile"), false).toBool());
    m_ui->updateCheck->setChecked(s.value(QStringLiteral("update"), false).toBool());
    loadFieldMap(s, m_fieldNumValueMap);
    writeFields();
    s.endGroup();
}

void Dialog::writeSettings()
{
    QSettings s;
    s.beginGroup(QStringLiteral("ImportObjects"));
    s.setValue(QStringLiteral("size"), size());
    s.setValue(QStringLiteral("splitterSizes"), m_ui->splitter->saveState());
    s.setValue(QStringLiteral("lastPath"), m_lastPath);
    s.setValue(QStringLiteral("searchPointDefs"), m_ui->searchPointDefsCheck->isChecked());
    s.setValue(QStringLiteral("pointPref"), m_ui->pointPrefEdit->text());
    s.setValue(QStringLiteral("pointStartNum"), m_ui->pointStartNumSpin->value());
    s.setValue(QStringLiteral("searchObjectDefs"), m_ui->searchObjectDefsCheck->isChecked());
    s.setValue(QStringLiteral("objectPref"), m_ui->objectPrefEdit->text());
    s.setValue(QStringLiteral("objectStartNum"), m_ui->objectStartNumSpin->value());
    s.setValue(QStringLiteral("usePointFile"), m_ui->usePointFileCheck->isChecked());
    s.setValue(QStringLiteral("update"), m_ui->updateCheck->isChecked());
    readFields();
    saveFieldMap(s, m_fieldNumValueMap);
    s.endGroup();
}

} // namespace literal
