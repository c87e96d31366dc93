#pragma once

#include "literal/literalmapimport.h"

#include <QStringList>

namespace literal {

/// The MIF/MID import written line for line in the plainest way: a temporary text for every line,
/// a list of texts for its tokens, and a sorted vector for a catalogue. It serves as the measure
/// of the reader that is built for speed.
class MifImport : public MapImport {
protected:
    bool loadPoints() override;
    bool loadPolygons() override;

private:
    bool readTokenizeMifLine(bool split);
    bool checkMifFile();
    bool openMidFile();
    bool readMidLine();
    QString extractDef(const QString& row) const;
    bool startPass(bool withMid);
    QString nextKeyword();
    bool readPoint();
    bool readLine();
    bool readPline();
    bool readPlineMultiple();
    bool readRegion();
    bool readSub(int count, bool closed);
    bool readVert(bool closing);
    QString token(int index) const { return tokens.value(index); }
    bool fail(const QString& text, int number) const;

    QString line;
    QChar delimiter = QLatin1Char(',');
    QStringList tokens;
    QFile midFile;
    QTextStream midIn;
    QString midLine;
    int midLineNum = 0;
};

} // namespace literal
