#pragma once

#include "geometry/defpolygon.h"
#include "geometry/pointcatalogue.h"
#include "import/linereader.h"

#include <QByteArray>
#include <QString>
#include <QTextCodec>
#include <QVector>

/// The base of the file readers: options, files, passes, and the operations that build objects.
///
/// An importer serves one run of importMap():
///  1. the caller sets the options, the encoding and the collection to fill;
///  2. if point designations are searched, the point file (or, without one, the object file) is
///     opened and the reader's loadPoints() collects the catalogue, which is then sorted and
///     freed of coincident points;
///  3. the object file is opened and the reader's loadPolygons() builds the objects through
///     appendEmptyPolygon(), appendEmptyContour(), appendVert() and setLastPolygonDef();
///  4. a reader that meets an error reports it once through showStatus() and ends its pass with
///     false; what was built until then stays in the collection.
///
/// The driver opens and closes the file of each pass; readers only read lines from it.
class MapImport {
public:
    MapImport();
    virtual ~MapImport();
    MapImport(const MapImport&) = delete;
    MapImport& operator=(const MapImport&) = delete;

    /// Runs the passes. Returns false when a pass was stopped by an error. A file that cannot be
    /// opened is reported and counts as empty.
    bool importMap();

    /// Chooses the text codec of the files by name; an unknown name changes nothing.
    void setEncoding(const QByteArray& name);

    bool swapXY = false; ///< store the vertices with x and y exchanged
    bool searchPointDefs = false; ///< run the point pass
    QString pointPref; ///< prefix of automatic point designations
    int pointStartNum = 0; ///< number of the next automatic point designation
    bool searchObjectDefs = false; ///< look for object designations in the files
    QString objectPref; ///< prefix of automatic object designations
    int objectStartNum = 0; ///< number of the next automatic object designation
    QString objectFileName;
    QString pointFileName; ///< separate file of the point pass; empty for the object file
    QVector<DefPolygon>* map = nullptr; ///< the collection to fill; not owned

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
    /// gets the next automatic number and becomes a catalogue point itself. A `closing` vertex
    /// takes the name of the contour's first one instead.
    void appendVert(double x, double y, bool closing);
    /// Names the last object; an empty `def` stands for the next automatic designation.
    void setLastPolygonDef(const QString& def);

    /// Reports `text` with its %1 replaced by a number, for example of a line.
    static void report(const QString& text, int number);
    /// Reports `text` with its %1 replaced by a file name in native separators.
    static void reportFile(const QString& text, const QString& fileName);

    PointCatalogue points; ///< the named points
    LineReader in; ///< the file of the current pass
    QTextCodec* codec; ///< the text codec of all files
    QByteArray encoding; ///< the codec name last asked for

private:
    bool openFile(const QString& fileName);
    QString vertexDef(double x, double y);
};
