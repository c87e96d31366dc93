#pragma once

#include <QString>
#include <QStringList>
#include <QtPlugin>

/// The host's side of the contract with the import plug-in, as an application that knows only the
/// contract declares it.
struct HostColumns {
    qint32 pointName;
    qint32 x;
    qint32 y;
    qint32 objectName;
};

using HostCallback = void (*)(const QString&);

class HostImport {
public:
    virtual ~HostImport() = default;
    virtual QStringList operations() const = 0;
    virtual QString operation(const QString& name, const QString& context, const QString& table,
        const QString& catalogue, const HostColumns& columns, HostCallback callback) = 0;
};

Q_DECLARE_INTERFACE(HostImport, "ru.vexora.VexoraStudio.ImportGeometryInterface/1.0")
