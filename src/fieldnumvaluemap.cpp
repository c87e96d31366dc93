#include "fieldnumvaluemap.h"

#include <QSettings>
#include <QStringList>

static const QString groupName = QStringLiteral("FieldNumValueMap");

void saveFieldMap(QSettings& settings, const FieldNumValueMap& map)
{
    settings.beginGroup(groupName);
    settings.remove(QString());
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        if (!it.value().isEmpty())
            settings.setValue(QString::number(it.key()), it.value());
    }
    settings.endGroup();
}

void loadFieldMap(QSettings& settings, FieldNumValueMap& map)
{
    map.clear();
    settings.beginGroup(groupName);
    const QStringList keys = settings.childKeys();
    for (const QString& key : keys) {
        bool ok = false;
        const int column = key.toInt(&ok);
        const QString text = settings.value(key).toString();
        if (ok && column >= 0 && !text.isEmpty())
            map.insert(column, text);
    }
    settings.endGroup();
}
