#pragma once

#include "prepare/prepareoptions.h"
#include "prepare/preparereport.h"

#include <QByteArray>
#include <QMetaType>
#include <QStringList>

Q_DECLARE_METATYPE(prep::PrepareOptions)

/// What became of a drawing.
struct Prepared {
    bool written = false;
    QByteArray bytes;
    prep::PrepareReport report;

    /// The names of what was done, in alphabetical order.
    QStringList notes() const;
};

Prepared prepared(const QByteArray& drawing, const prep::PrepareOptions& options = {});

/// What is drawn by the entities of a drawing that was flattened, one text each, with the digits of
/// the file: "line 0 0, 10 5.0"; "open 0 0, 1 0, 1 1"; "closed 0 0, 1 0, 1 1"; "point 3 4";
/// "text 3 4 ЗУ 1".
QStringList outline(const QByteArray& drawing, const char* codecName = "UTF-8");

/// A drawing with these blocks and entities, each in the notation of pairs().
QByteArray drawingOf(const char* entities, const char* blocks = "", const char* tables = "");
