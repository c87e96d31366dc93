#pragma once

#include <QVariant>

#include <functional>
#include <vector>

class QCheckBox;
class QLineEdit;
class QSettings;
class QSpinBox;

/// Something that the dialog keeps between its runs.
struct Setting {
    const char* key;
    QVariant absent; ///< the value as long as none is stored
    std::function<void(const QVariant&)> set; ///< takes any value, as QVariant converts it
    std::function<QVariant()> value;
};

/// Settings that are the state of a widget.
Setting widgetSetting(const char* key, QCheckBox* box, bool absent);
Setting widgetSetting(const char* key, QLineEdit* edit, const QString& absent);
Setting widgetSetting(const char* key, QSpinBox* spin, int absent);

/// Sets each setting, in their order, to the value stored in the current group.
void loadSettings(const QSettings& store, const std::vector<Setting>& settings);
/// Stores each setting's value, in their order, in the current group.
void saveSettings(QSettings& store, const std::vector<Setting>& settings);
