#include "importplugin.h"

#include "dialog.h"
#include "status.h"

static const QString strImportFromMif = QString::fromUtf8("Объекты из MIF");
static const QString strImportFromDxf = QString::fromUtf8("Объекты из DXF");

ImportPlugin::ImportPlugin(QObject* parent)
    : QObject(parent)
{
}

ImportPlugin::~ImportPlugin() = default;

QStringList ImportPlugin::operations() const
{
    return { strImportFromMif, strImportFromDxf };
}

QString ImportPlugin::operation(const QString& opName, const QString& contextName,
    const QString& tableName, const QString& catalogueTableName, const GeometryInfo& info,
    StatusFunc callback)
{
    setStatusFunc(callback);
    QString result;
    guarded([&] {
        Dialog dialog;
        if (opName != strImportFromMif && opName != strImportFromDxf) {
            showStatus(QStringLiteral("Ошибка. Операция импорта \"%1\" планином не поддерживается.")
                           .arg(opName));
            return;
        }
        dialog.setUp(opName == strImportFromDxf, contextName, tableName, catalogueTableName, info);
        dialog.exec();
        if (dialog.result() == QDialog::Accepted)
            result = dialog.stringResult();
    });
    return result;
}
