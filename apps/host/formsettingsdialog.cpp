#include "formsettingsdialog.h"

#include "plaintext.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QSpinBox>

FormSettingsDialog::FormSettingsDialog(const FormSettings& settings, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(QStringLiteral("Таблицы программы"));
    auto* layout = new QFormLayout(this);
    const auto addEdit = [&](const char* name, const QString& label, const QString& text) {
        auto* edit = new QLineEdit(text);
        edit->setObjectName(QLatin1String(name));
        edit->setMinimumWidth(240);
        layout->addRow(label, edit);
        return edit;
    };
    // Users count columns from one.
    const auto addSpin = [&](const char* name, const QString& label, int column) {
        auto* spin = new QSpinBox;
        spin->setObjectName(QLatin1String(name));
        spin->setRange(1, 100);
        spin->setValue(column + 1);
        layout->addRow(label, spin);
        return spin;
    };
    m_context = addEdit("contextEdit", QStringLiteral("&Имя формы:"), settings.contextName);
    m_table = addEdit("tableEdit", QStringLiteral("&Таблица объектов:"), settings.tableName);
    m_object = addSpin(
        "objectSpin", QStringLiteral("Столбец &обозначения объекта:"), settings.columns.defColNum);
    m_catalogue =
        addEdit("catalogueEdit", QStringLiteral("Таблица &каталога:"), settings.catalogueName);
    m_point = addSpin(
        "pointSpin", QStringLiteral("Столбец обозначения то&чки:"), settings.columns.nColNum);
    m_x = addSpin(
        "xSpin", QStringLiteral("Столбец &первой координаты файла:"), settings.columns.xColNum);
    m_y = addSpin(
        "ySpin", QStringLiteral("Столбец &второй координаты файла:"), settings.columns.yColNum);
    m_titles =
        addEdit("titlesEdit", QStringLiteral("&Заголовки столбцов каталога:"), settings.titles);
    m_titles->setToolTip(QStringLiteral("Через запятую, с первого столбца"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    layout->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &FormSettingsDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &FormSettingsDialog::reject);
}

FormSettings FormSettingsDialog::settings() const
{
    FormSettings settings;
    settings.contextName = m_context->text();
    settings.tableName = m_table->text();
    settings.catalogueName = m_catalogue->text();
    settings.titles = m_titles->text();
    settings.columns = { m_point->value() - 1, m_x->value() - 1, m_y->value() - 1,
        m_object->value() - 1 };
    return settings;
}

void FormSettingsDialog::accept()
{
    const GeometryInfo columns = settings().columns;
    if (columns.nColNum == columns.xColNum || columns.nColNum == columns.yColNum
        || columns.xColNum == columns.yColNum) {
        warn(this, windowTitle(),
            QStringLiteral("Обозначение точки и координаты должны стоять в разных столбцах."));
        return;
    }
    QDialog::accept();
}
