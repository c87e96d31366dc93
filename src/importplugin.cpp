#include "importplugin.h"

#include "dialog.h"
#include "import/formats.h"
#include "status.h"

ImportPlugin::ImportPlugin(QObject* parent)
    : QObject(parent)
{
}

ImportPlugin::~ImportPlugin() = default;

QStringList ImportPlugin::operations() const
{
    QStringList names;
    for (const Format& format : formats())
        names.append(format.operation);
    return names;
}

QString ImportPlugin::operation(const QString& opName, const QString& contextName,
    const QString& tableName, const QString& catalogueTableName, const GeometryInfo& info,
    StatusFunc callback)
{
    setStatusFunc(callback);
    QString result;
    guarded([&] {
        Dialog dialog;
        const Format* const format = formatOfOperation(opName);
        if (!format) {
            showStatus(QStringLiteral("Ошибка. Операция импорта \"%1\" планином не поддерживается.")
                           .arg(opName));
            return;
        }
        dialog.setUp(*format, contextName, tableName, catalogueTableName, info);
        dialog.exec();
        if (dialog.result() == QDialog::Accepted)
            result = dialog.stringResult();
    });
    return result;
}
