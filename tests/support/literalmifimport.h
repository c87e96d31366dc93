#pragma once

#include "geometry/defpolygon.h"
#include "support/literalcatalogue.h"

#include <QFile>
#include <QSet>
#include <QStringList>
#include <QTextCodec>
#include <QTextStream>

namespace literal {

/// The MIF/MID import written line for line in the plainest way: a temporary text for every line,
/// a list of texts for its tokens, and a sorted vector for a catalogue. It serves as the measure
/// of the reader that is built for speed.
class MifImport {
public:
    bool importMap();
    void setEncoding(const QByteArray& name);

    bool swapXY = false;
    bool searchPointDefs = false;
    QString pointPref;
    int pointStartNum = 0;
    bool searchObjectDefs = false;
    QString objectPref;
    int objectStartNum = 0;
    QString objectFileName;
    QString pointFileName;
    QVector<DefPolygon>* map = nullptr;

private:
    bool openFile(const QString& name);
    void appendVert(double x, double y, bool closing);
    void setLastPolygonDef(QString def);

    bool readTokenizeMifLine(bool split);
    bool checkMifFile();
    bool openMidFile();
    bool readMidLine();
    QString extractDef(const QString& row) const;
    bool startPass(bool withMid);
    QString nextKeyword();
    bool loadPoints();
    bool loadPolygons();
    bool readPoint();
    bool readLine();
    bool readPline();
    bool readPlineMultiple();
    bool readRegion();
    bool readSub(int count, bool closed);
    bool readVert(bool closing);
    QString token(int index) const { return tokens.value(index); }
    bool fail(const QString& text, int number) const;

    Catalogue catalogue;
    QTextStream in;
    QString line;
    int lineNum = 0;
    QTextCodec* codec = QTextCodec::codecForLocale();
    QFile file;
    QChar delimiter = QLatin1Char(',');
    QStringList tokens;
    QFile midFile;
    QTextStream midIn;
    QString midLine;
    int midLineNum = 0;
};

} // namespace literal
