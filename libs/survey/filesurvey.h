#pragma once

#include "importrun/importrun.h"
#include "survey/causes.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <map>
#include <memory>
#include <string>

/// What an import reads a file for.
enum class FileRole {
    Objects, ///< and the points, where there is no file of its own for them
    Points,
};

/// How many entities of a kind a file holds, and how many of them the import made use of.
struct KindCount {
    qint64 count = 0;
    qint64 read = 0;
};

/// Behind the name of a kind: those that stand in the blocks of a drawing.
constexpr const char* inBlocks = " (в блоках)";
/// In the place of a kind's name: all that are too many to be told one by one.
constexpr const char* otherKinds = "(прочие)";

/// What a file holds beside what an import made of it, and why that may be less than its user
/// expects.
///
/// What was read, how much of it, and where and why a pass stopped is the import's own word. The
/// survey adds a census of the file, which goes on where the import stopped, and findings about its
/// bytes.
struct FileSurvey {
    QString fileName;
    std::map<std::string, KindCount> kinds; ///< by name, as the file writes it, with the above
    QVector<FoundCause> causes;
    QByteArray likelyEncoding; ///< a codec's name; empty for plain ASCII
    QString declaredEncoding; ///< what the file's header says
    bool encodingMatches = true; ///< the chosen encoding reads the texts as they are meant
    bool isInDegrees = false; ///< the header says so
};

/// The encoding that the bytes of a file and of its companion look like: a codec's name; empty for
/// plain ASCII and for no file.
QByteArray likelyEncoding(const Format& format, const QString& fileName);

class Surveyor;

/// What surveys the file of a role; `options.encoding` is the name of the codec in force. There
/// is one for each format.
std::unique_ptr<Surveyor> makeSurveyor(
    const Format& format, const ImportOptions& options, FileRole role);
