#pragma once

#include "formtable.h"

#include <QBitArray>
#include <QObject>
#include <QUndoStack>

/// The form that the window shows. Every change can be taken back.
class Document : public QObject {
    Q_OBJECT

public:
    explicit Document(QObject* parent = nullptr);

    const FormTable& table() const { return m_table; }
    const QVector<DefPolygon>& objects() const { return m_table.objects; }
    /// The objects whose designation occurs more than once.
    const QBitArray& duplicates() const { return m_duplicates; }
    QUndoStack& undoStack() { return m_undoStack; }
    /// The file that the form was read from or saved in; empty for none.
    const QString& fileName() const { return m_fileName; }

    /// Shows a form afresh: nothing can be taken back.
    void reset(const FormTable& table, const QString& fileName);
    /// The form was written to a file.
    void setSaved(const QString& fileName);
    /// Replaces the form as one step, which `text` tells.
    void replaceTable(const FormTable& table, const QString& text);
    void renameObject(int object, const QString& def);
    void renamePoint(int object, int contour, int vertex, const QString& def);

    /// Whether the northing stands first in the places of the objects: by their sizes, or by the
    /// columns that they go to.
    bool isNorthingFirst() const { return m_isNorthingFirst; }
    /// The number of columns of the catalogues.
    int catalogueColumns() const { return m_catalogueColumns; }

signals:
    void tableAboutToBeReplaced();
    /// Everything is another: objects, places, names.
    void tableReplaced();
    void objectRenamed(int object);
    void pointRenamed(int object, int contour, int vertex);
    void fileNameChanged();

private:
    class ReplaceTable;
    class RenameObject;
    class RenamePoint;

    void setTable(const FormTable& table);
    void setObjectDef(int object, const QString& def);
    void setPointDef(int object, int contour, int vertex, const QString& def);

    FormTable m_table;
    QBitArray m_duplicates;
    QUndoStack m_undoStack;
    QString m_fileName;
    bool m_isNorthingFirst = false;
    int m_catalogueColumns = 0;
};
