#include "dialogsettings.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QSettings>
#include <QSpinBox>

Setting widgetSetting(const char* key, QCheckBox* box, bool absent)
{
    return { key, absent, [box](const QVariant& value) { box->setChecked(value.toBool()); },
        [box] { return QVariant(box->isChecked()); } };
}

Setting widgetSetting(const char* key, QLineEdit* edit, const QString& absent)
{
    return { key, absent, [edit](const QVariant& value) { edit->setText(value.toString()); },
        [edit] { return QVariant(edit->text()); } };
}

Setting widgetSetting(const char* key, QSpinBox* spin, int absent)
{
    return { key, absent, [spin](const QVariant& value) { spin->setValue(value.toInt()); },
        [spin] { return QVariant(spin->value()); } };
}

void loadSettings(const QSettings& store, const std::vector<Setting>& settings)
{
    for (const Setting& setting : settings)
        setting.set(store.value(QLatin1String(setting.key), setting.absent));
}

void saveSettings(QSettings& store, const std::vector<Setting>& settings)
{
    for (const Setting& setting : settings)
        store.setValue(QLatin1String(setting.key), setting.value());
}
