#include "formsettings.h"

#include <QSettings>

namespace {

constexpr int mostColumns = 100;

QString key(const char* name)
{
    return QStringLiteral("form/") + QLatin1String(name);
}

qint32 column(const QSettings& store, const char* name, qint32 absent)
{
    return qBound(0, store.value(key(name), absent).toInt(), mostColumns - 1);
}

} // namespace

QStringList FormSettings::titleList() const
{
    QStringList list = titles.split(QLatin1Char(','));
    for (QString& title : list)
        title = title.trimmed();
    return list;
}

void FormSettings::load(const QSettings& store)
{
    const FormSettings absent;
    contextName = store.value(key("context"), absent.contextName).toString();
    tableName = store.value(key("table"), absent.tableName).toString();
    catalogueName = store.value(key("catalogue"), absent.catalogueName).toString();
    titles = store.value(key("titles"), absent.titles).toString();
    columns = { column(store, "pointColumn", absent.columns.nColNum),
        column(store, "xColumn", absent.columns.xColNum),
        column(store, "yColumn", absent.columns.yColNum),
        column(store, "objectColumn", absent.columns.defColNum) };
}

void FormSettings::save(QSettings& store) const
{
    store.setValue(key("context"), contextName);
    store.setValue(key("table"), tableName);
    store.setValue(key("catalogue"), catalogueName);
    store.setValue(key("titles"), titles);
    store.setValue(key("pointColumn"), columns.nColNum);
    store.setValue(key("xColumn"), columns.xColNum);
    store.setValue(key("yColumn"), columns.yColNum);
    store.setValue(key("objectColumn"), columns.defColNum);
}
