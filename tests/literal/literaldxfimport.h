#pragma once

#include "literal/literalmapimport.h"

#include <QHash>
#include <QSet>

namespace literal {

/// The DXF import written for plainness alone: pairs are strings, entities are read into sets and
/// hashes, texts stand in a sorted vector. What it makes of a drawing is what the product has to
/// make of it.
class DxfImport : public MapImport {
protected:
    bool loadPoints() override;
    bool loadPolygons() override;

private:
    bool failAtLine() const;
    bool readCodeValue();
    bool checkDxfFile();
    bool readRequired(QSet<QString> required, QHash<QString, double>* numbers);
    bool readPoint();
    bool readText();
    bool readLine();
    bool readVertex();
    bool readPolyline();
    bool readLwpolyline();
    bool closeContour(bool closed);

    void updatePointsDefs();
    bool loadTextsOnly();
    void filterObjectDefs();
    void updateLastPolygonDef();

    QVector<DefPoint> texts;
    QString code;
    QString value;
    bool unread = false;
};

/// `text` with its control sequences replaced, found by a regular expression.
QString decodeText(const QString& text, const QTextCodec* codec);

/// Whether a text looks like a point number, told by a regular expression.
bool isPointNumber(const QString& def);

} // namespace literal
