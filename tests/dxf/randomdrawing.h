#pragma once

#include "support/importing.h"
#include "support/random.h"

/// Drawings made up at random: some are sound, many are not. The same seed gives the same ones.
///
/// Each instance has a manner of its own: where coordinates lie (on a coarse grid with many equal
/// distances, within the tolerance of each other, anywhere, at infinity), which entities occur,
/// and how the file ends.
class RandomDrawing {
public:
    explicit RandomDrawing(quint32 seed);

    ImportOptions options();
    /// A drawing whose pairs are in order, although its entities may lack codes.
    QStringList lines(int mostEntities = 40);
    /// Spoils a few lines: drops, doubles, blanks, swaps or replaces them, or cuts the drawing off.
    QStringList spoiled(QStringList lines);
    QByteArray bytes(const QStringList& lines) const;
    bool chance(int percent) { return below(100) < percent; }

private:
    enum class Places { Grid, FineGrid, Crowd, Anywhere, Strange };

    int below(int bound) { return m_random.below(bound); }
    QString coordinate();
    QString label();
    void add(const char* code, const QString& value);
    void add(const char* code, const char* value);
    void addPlace(const char* codeX, const char* codeY);
    void addExtras();
    void addPoint();
    void addText();
    void addLine();
    void addPolyline();
    void addLwpolyline();
    void addEntity();
    void addEntities(int count);
    void addSection(const char* name, int entityCount);

    Random m_random;
    Places m_places;
    bool m_withPoints;
    bool m_sound;
    QByteArray m_encoding;
    QStringList m_lines;
};
