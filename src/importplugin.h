#pragma once

#include "importgeometryinterface.h"

#include <QObject>

/// The plug-in's root object: offers the import of objects from MIF/MID and from DXF files.
class ImportPlugin : public QObject, public ImportGeometryInterface {
    Q_OBJECT
    Q_INTERFACES(ImportGeometryInterface)
    Q_PLUGIN_METADATA(IID "ru.vexora.VexoraStudio.ImportGeometryInterface")

public:
    explicit ImportPlugin(QObject* parent = nullptr);
    ~ImportPlugin() override;

    QStringList operations() const override;
    QString operation(const QString& opName, const QString& contextName, const QString& tableName,
        const QString& catalogueTableName, const GeometryInfo& info, StatusFunc callback) override;
};
