#pragma once

#include "importgeometryinterface.h"

#include <QString>
#include <QStringList>

class QSettings;

/// The names and columns of the program's own tables, which every import is told.
struct FormSettings {
    QString contextName = QStringLiteral("Форма");
    QString tableName = QStringLiteral("Участки");
    QString catalogueName = QStringLiteral("Координаты");
    GeometryInfo columns{ 0, 2, 1, 1 };
    /// Titles of the catalogue's columns from the first one, parted by commas.
    QString titles = QStringLiteral("Точка, X, Y");

    QStringList titleList() const;
    void load(const QSettings& store);
    void save(QSettings& store) const;
};
