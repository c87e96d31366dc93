#include "foreigndialog.h"

#include "plaintext.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>

namespace {

/// The place of the entry that stands for no column.
constexpr int noColumn = 0;

} // namespace

ForeignDialog::ForeignDialog(
    const QString& fileName, const QVector<prep::ForeignLayer>& layers, QWidget* parent)
    : QDialog(parent)
    , m_layers(layers)
    , m_layer(new QComboBox)
    , m_column(new QComboBox)
{
    setWindowTitle(QStringLiteral("Файл другого формата"));
    auto* layout = new QFormLayout(this);
    auto* label = plainLabel(
        QStringLiteral("Файл «%1» читает программа ogr2ogr. Рядом с ним будет записана копия "
                       "MIF/MID, она и откроется; сам файл не изменится.")
            .arg(QFileInfo(fileName).fileName()));
    label->setWordWrap(true);
    layout->addRow(label);
    m_layer->setObjectName(QStringLiteral("layerCombo"));
    for (const prep::ForeignLayer& layer : layers)
        m_layer->addItem(layer.name);
    layout->addRow(QStringLiteral("&Слой:"), m_layer);
    m_column->setObjectName(QStringLiteral("columnCombo"));
    layout->addRow(QStringLiteral("Столбец &обозначений:"), m_column);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("&Записать копию и открыть"));
    layout->addRow(buttons);
    connect(m_layer, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
        &ForeignDialog::showColumns);
    connect(buttons, &QDialogButtonBox::accepted, this, &ForeignDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ForeignDialog::reject);
    showColumns();
}

void ForeignDialog::showColumns()
{
    const QStringList columns = m_layers.at(m_layer->currentIndex()).columns;
    m_column->clear();
    m_column->addItem(QStringLiteral("(нет, объекты нумеруются)"));
    m_column->addItems(columns);
    m_column->setCurrentIndex(columns.isEmpty() ? noColumn : noColumn + 1);
    m_column->setEnabled(!columns.isEmpty());
}

QString ForeignDialog::layer() const
{
    return m_layer->currentText();
}

QString ForeignDialog::column() const
{
    return m_column->currentIndex() == noColumn ? QString() : m_column->currentText();
}
