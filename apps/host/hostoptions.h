#pragma once

#include "importgeometryinterface.h"

#include <QPair>
#include <QString>
#include <QStringList>
#include <QVector>

class QCoreApplication;

/// What the stand-in host was told on its command line.
struct HostOptions {
    /// Object names of the dialog's widgets and the values to give them, in this order.
    using WidgetValues = QVector<QPair<QString, QString>>;

    QString pluginPath; ///< empty: where plug-ins are looked for
    QStringList files; ///< to open in the window
    bool isScripted = false; ///< without a window of its own
    QString operation; ///< empty: only list the operations
    QString contextName;
    QString tableName;
    QString catalogueTableName;
    GeometryInfo info;
    WidgetValues widgetValues;
    QString screenshotDir; ///< empty: no screenshots
    QString outputFile; ///< empty: the result is printed
    QString settingsDir; ///< empty: the user's own settings folder
};

/// True when nobody is there to use a window: on demand, or for want of a display.
bool isUnattended(int argc, const char* const* argv);

/// Reads the command line of `app`; ends the program on a request for help and on a usage error.
HostOptions readOptions(const QCoreApplication& app);
