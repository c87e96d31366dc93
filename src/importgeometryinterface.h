#pragma once

#include <QString>
#include <QStringList>
#include <QtPlugin>

/// Zero-based column numbers of the host's form tables, given with each call of an operation.
struct GeometryInfo {
    qint32 nColNum; ///< catalogue column that receives the point designation
    qint32 xColNum; ///< catalogue column that receives x
    qint32 yColNum; ///< catalogue column that receives y
    qint32 defColNum; ///< form-table column that receives the object designation
};

/// The host's message callback; may be null, messages are then dropped.
using StatusFunc = void (*)(const QString& message);

/// The interface that the host finds on the plug-in's root object.
///
/// Host and plug-in share nothing but this declaration: the order of the virtual functions, of
/// their arguments and of the fields of GeometryInfo is the binary contract between them.
class ImportGeometryInterface {
public:
    virtual ~ImportGeometryInterface() = default;

    /// The user-visible names of the operations on offer, in the order in which to show them.
    virtual QStringList operations() const = 0;

    /// Runs the operation named `opName` in a modal dialog on the GUI thread.
    ///
    /// `contextName` names the host's context; `tableName` and `catalogueTableName` become the
    /// names of the outer and of the nested tables in the result. Messages of this call, and later
    /// ones until the next call, go to `statusFunc`.
    ///
    /// Returns the result XML when the user accepted the dialog. Returns a null string when the
    /// user cancelled, and, after a message, when there is no operation of that name.
    virtual QString operation(const QString& opName, const QString& contextName,
        const QString& tableName, const QString& catalogueTableName, const GeometryInfo& info,
        StatusFunc statusFunc) = 0;
};

#define ImportGeometryInterface_iid "ru.vexora.VexoraStudio.ImportGeometryInterface/1.0"
Q_DECLARE_INTERFACE(ImportGeometryInterface, ImportGeometryInterface_iid)
