#pragma once

#include "geometry/defpolygon.h"
#include "import/importoptions.h"
#include "literal/literalcatalogue.h"

#include <QFile>
#include <QTextCodec>
#include <QTextStream>

namespace literal {

/// What the plain importers of both formats share: the order of the passes, and the
/// naming of vertices and objects.
class MapImport : public ImportOptions {
public:
    virtual ~MapImport() = default;

    bool importMap();
    void setEncoding(const QByteArray& name);

    QVector<DefPolygon>* map = nullptr;

protected:
    virtual bool loadPoints() = 0;
    virtual bool loadPolygons() = 0;

    /// Opens a file as a stream of lines; when that fails, shows the message `error` about it.
    bool open(QFile& from, QTextStream& stream, const QString& name, const QString& error) const;
    void appendVert(double x, double y, bool closing = false);
    void setLastPolygonDef(QString def);
    QVector<DefPoint>& lastContour() { return map->last().contours.last(); }

    Catalogue catalogue;
    QFile file;
    QTextStream in;
    int lineNum = 0;
    QTextCodec* codec = QTextCodec::codecForLocale();

private:
    bool openPass(const QString& name);
};

/// Shows a message about a file.
void reportFile(const QString& text, const QString& name);

} // namespace literal
