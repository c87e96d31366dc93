#pragma once

#include "geometry/defpolygon.h"
#include "geometry/pointcatalogue.h"
#include "import/importobserver.h"
#include "import/importoptions.h"
#include "import/linereader.h"
#include "import/vertexnamer.h"

#include <QByteArray>
#include <QString>
#include <QTextCodec>
#include <QVector>

/// The base of the file readers: files, passes, and the operations that build objects.
///
/// An importer serves one run of importMap():
///  1. the caller sets the options, the collection to fill and, if it wants to know more than the
///     messages, the observer;
///  2. if point designations are searched, the point file (or, without one, the object file) is
///     opened and the reader's loadPoints() collects the catalogue, which is then sorted and
///     freed of coincident points;
///  3. the object file is opened and the reader's loadPolygons() builds the objects through
///     appendEmptyPolygon(), appendEmptyContour(), appendVert() and setLastPolygonDef();
///  4. a reader that meets an error tells the observer once and ends its pass with false; what was
///     built until then stays in the collection.
///
/// The driver opens and closes the file of each pass; readers only read lines from it.
class MapImport : public ImportOptions {
public:
    MapImport();
    virtual ~MapImport();
    MapImport(const MapImport&) = delete;
    MapImport& operator=(const MapImport&) = delete;

    /// Runs the passes. Returns false when a pass was stopped by an error. A file that cannot be
    /// opened is reported and counts as empty.
    bool importMap();

    /// Takes all options, the encoding included.
    void setOptions(const ImportOptions& options);
    /// Chooses the text codec of the files by name; an unknown name changes nothing.
    void setEncoding(const QByteArray& name);

    QVector<DefPolygon>* map = nullptr; ///< the collection to fill; not owned
    ImportObserver* observer; ///< not owned; at first one that shows failures to the user

protected:
    /// The point pass over `in`: fills `points`. False when it was stopped by an error.
    virtual bool loadPoints() = 0;
    /// The object pass over `in`: fills `map`. False when it was stopped by an error.
    virtual bool loadPolygons() = 0;

    /// Starts the current file again from its beginning; the count of lines runs on.
    void resetInFileStream();

    /// Adds an object without contours.
    void appendEmptyPolygon();
    /// Adds an empty contour to the last object.
    void appendEmptyContour();
    /// Adds a vertex to the last contour. It is named after the catalogue point at its place, or
    /// gets the next automatic number and becomes a catalogue point itself. A `closing` vertex, the
    /// last of its contour, takes the name of the first one instead. Names are given a little
    /// later; until the end of the pass none may be asked for, nor the catalogue be used.
    void appendVert(double x, double y, bool closing);
    /// Names the last object; an empty `def` stands for the next automatic designation.
    void setLastPolygonDef(const QString& def);

    /// An entity starts on the current line; until endEntity() a failure is one of it. `kind` lives
    /// as long as the program.
    void startEntity(QLatin1String kind);
    void endEntity() { startEntity({}); }
    /// Tells the observer that the current line cannot be read; returns false.
    bool fail(FailureKind kind);
    /// Tells the observer that the current line shows the file to be none of the format; returns
    /// false.
    bool failFormat(FailureKind kind);
    /// Tells the observer that a file cannot be opened; returns false.
    bool failFile(FailureKind kind, const QString& fileName);

    PointCatalogue points; ///< the named points
    LineReader in; ///< the file of the current pass
    QTextCodec* codec; ///< the text codec of all files

private:
    bool openFile(ImportPass pass, const QString& fileName);
    void endObject();
    void endContour();
    void finishNames();
    void tellNamed();
    void dropUnnamed();

    VertexNamer m_namer{ points, *this };
    bool m_isInObject = false;
    QVector<DefPoint>* m_contour = nullptr; ///< the contour at work, if any
    bool m_isClosed = false; ///< it has a closing vertex
    int m_objects = 0; ///< built by the pass
    int m_toldNamed = 0; ///< of so many the observer was told that they are named
    QLatin1String m_entity;
    int m_entityLine = 0;
};
