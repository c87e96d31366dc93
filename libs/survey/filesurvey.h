#pragma once

#include "survey/causes.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <map>
#include <string>
#include <string_view>

/// What an import of a file was told.
struct SurveyOptions {
    QByteArray encoding; ///< the name of the codec in force
    bool readsPoints = true; ///< the file is read for points
    bool readsObjects = true; ///< the file is read for objects
    bool searchObjectDefs = true;
    bool searchPointDefs = true;
};

/// How many objects of a kind a file holds, and how many of them the import makes use of.
struct KindCount {
    qint64 count = 0;
    qint64 read = 0;
};

/// How many different vertices a contour of an object needs.
enum class Shape : char { Line = 2, Area = 3 };

/// What a file holds beside what an import makes of it.
///
/// The survey follows the reader's steps on the bytes of the file, and goes on where the reader
/// stops. It never changes what the reader does; where a file breaks the rules in ways that let
/// the reader run over the bounds of an object, the counts may differ from the reader's.
struct FileSurvey {
    QString fileName;
    int lineCount = 0;
    bool stopped = false; ///< an error keeps the reader from reading all of the file
    std::map<std::string, KindCount> kinds; ///< by name, as the file writes it
    QVector<Shape> shapes; ///< of the objects that the import builds, in order
    QVector<FoundCause> causes;
    QByteArray likelyEncoding; ///< a codec's name; empty for plain ASCII
    QString declaredEncoding; ///< what the file's header says
    bool encodingMatches = true; ///< the chosen encoding reads the texts as they are meant
};

FileSurvey surveyMif(const QString& fileName, const SurveyOptions& options);
FileSurvey surveyDxf(const QString& fileName, const SurveyOptions& options);

/// Adds the cause of an empty result where `survey` has none yet.
void explainEmptyResult(FileSurvey& survey);

// Shared by the surveys of the formats.

/// All bytes of a file; none of a file that cannot be read.
QByteArray readBytes(const QString& fileName);

/// Judges the chosen encoding against `bytes`, those of the file, if the `texts` in it that become
/// designations depend on it.
void judgeEncoding(FileSurvey& survey, const SurveyOptions& options, const QByteArray& bytes,
    const QByteArray& texts);

inline std::string_view view(const QByteArray& bytes)
{
    return { bytes.constData(), static_cast<size_t>(bytes.size()) };
}

/// Whether a text is a number for the readers.
bool isNumber(std::string_view text);
/// The number that a text holds; `absent` when it is none.
double numberOf(std::string_view text, double absent);
/// The whole number that a text holds; `absent` when it is none.
int toInt(std::string_view text, int absent);
