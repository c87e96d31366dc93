#include "document.h"

#include "geometry/conflicts.h"
#include "survey/findings.h"

#include <QUndoCommand>

#include <utility>

/// Old and new form share what is alike in them.
class Document::ReplaceTable : public QUndoCommand {
public:
    ReplaceTable(Document& document, FormTable table, const QString& text)
        : QUndoCommand(text)
        , m_document(document)
        , m_before(document.m_table)
        , m_after(std::move(table))
    {
    }
    void undo() override { m_document.setTable(m_before); }
    void redo() override { m_document.setTable(m_after); }

private:
    Document& m_document;
    const FormTable m_before;
    const FormTable m_after;
};

class Document::RenameObject : public QUndoCommand {
public:
    RenameObject(Document& document, int object, const QString& def)
        : QUndoCommand(QStringLiteral("обозначение объекта «%1»").arg(def))
        , m_document(document)
        , m_object(object)
        , m_before(document.objects().at(object).def)
        , m_after(def)
    {
    }
    void undo() override { m_document.setObjectDef(m_object, m_before); }
    void redo() override { m_document.setObjectDef(m_object, m_after); }

private:
    Document& m_document;
    const int m_object;
    const QString m_before;
    const QString m_after;
};

class Document::RenamePoint : public QUndoCommand {
public:
    RenamePoint(Document& document, int object, int contour, int vertex, const QString& def)
        : QUndoCommand(QStringLiteral("обозначение точки «%1»").arg(def))
        , m_document(document)
        , m_object(object)
        , m_contour(contour)
        , m_vertex(vertex)
        , m_before(document.objects().at(object).contours.at(contour).at(vertex).def)
        , m_after(def)
    {
    }
    void undo() override { m_document.setPointDef(m_object, m_contour, m_vertex, m_before); }
    void redo() override { m_document.setPointDef(m_object, m_contour, m_vertex, m_after); }

private:
    Document& m_document;
    const int m_object;
    const int m_contour;
    const int m_vertex;
    const QString m_before;
    const QString m_after;
};

Document::Document(QObject* parent)
    : QObject(parent)
{
}

void Document::reset(const FormTable& table, const QString& fileName)
{
    m_undoStack.clear();
    setTable(table);
    m_fileName = fileName;
    emit fileNameChanged();
}

void Document::setSaved(const QString& fileName)
{
    m_undoStack.setClean();
    m_fileName = fileName;
    emit fileNameChanged();
}

void Document::replaceTable(const FormTable& table, const QString& text)
{
    m_undoStack.push(new ReplaceTable(*this, table, text));
}

void Document::renameObject(int object, const QString& def)
{
    if (m_table.objects.at(object).def != def)
        m_undoStack.push(new RenameObject(*this, object, def));
}

void Document::renamePoint(int object, int contour, int vertex, const QString& def)
{
    if (m_table.objects.at(object).contours.at(contour).at(vertex).def != def)
        m_undoStack.push(new RenamePoint(*this, object, contour, vertex, def));
}

void Document::setTable(const FormTable& table)
{
    emit tableAboutToBeReplaced();
    m_table = table;
    m_duplicates = duplicateDefs(m_table.objects);
    const AxisOrder order = guessAxisOrder(m_table.objects);
    m_isNorthingFirst = order == AxisOrder::Unknown
        ? m_table.columns.xColNum < m_table.columns.yColNum
        : order == AxisOrder::NorthingFirst;
    m_catalogueColumns = m_table.catalogueColumns();
    emit tableReplaced();
}

void Document::setObjectDef(int object, const QString& def)
{
    QString& stored = m_table.objects[object].def;
    const QString before = stored;
    stored = def;
    updateDuplicateDefs(m_duplicates, m_table.objects, object, before);
    emit objectRenamed(object);
}

void Document::setPointDef(int object, int contour, int vertex, const QString& def)
{
    m_table.objects[object].contours[contour][vertex].def = def;
    emit pointRenamed(object, contour, vertex);
}
