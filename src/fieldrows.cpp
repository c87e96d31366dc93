#include "fieldrows.h"

#include <QLayout>
#include <QLineEdit>
#include <QSpinBox>

static QString spinName(int row)
{
    return QStringLiteral("fieldSpin_%1").arg(row);
}

static QString editName(int row)
{
    return QStringLiteral("fieldEdit_%1").arg(row);
}

FieldRow fieldRow(const QWidget& form, int row)
{
    return { form.findChild<QSpinBox*>(spinName(row)), form.findChild<QLineEdit*>(editName(row)) };
}

FieldNumValueMap shownFields(const QWidget& form)
{
    FieldNumValueMap fields;
    for (int i = 0; i < maxFieldCount; ++i) {
        const FieldRow row = fieldRow(form, i);
        if (!row)
            break;
        if (!row.edit->text().isEmpty())
            fields.insert(row.spin->value() - 1, row.edit->text());
    }
    return fields;
}

bool addFieldRow(QWidget& form, QLayout& layout, int row)
{
    const FieldRow last = fieldRow(form, row - 1);
    if (!last.spin)
        return false;

    auto* spin = new QSpinBox(&form);
    spin->setObjectName(spinName(row));
    spin->setValue(last.spin->value() + 1);
    spin->setMaximum(last.spin->maximum());
    spin->setMinimum(last.spin->minimum());
    layout.addWidget(spin);

    auto* edit = new QLineEdit(&form);
    edit->setObjectName(editName(row));
    layout.addWidget(edit);

    QWidget::setTabOrder(last.edit, spin);
    QWidget::setTabOrder(spin, edit);
    return true;
}

void removeFieldRow(const QWidget& form, int row)
{
    const FieldRow gone = fieldRow(form, row);
    delete gone.spin;
    delete gone.edit;
}
