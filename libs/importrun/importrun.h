#pragma once

#include "geometry/defpolygon.h"
#include "import/formats.h"
#include "import/importobserver.h"
#include "import/importoptions.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// How many different vertices a contour of an object needs.
enum class Shape : char { Line = 2, Area = 3 };

/// Something that an import told its user.
struct ImportMessage {
    QString text;
    ImportPass pass; ///< in which it happened
    std::optional<ImportFailure> failure; ///< none for what no reader told, such as want of memory
};

/// How many entities of each kind were read.
class KindCounts {
public:
    void add(QLatin1String kind);
    qint64 of(const std::string& kind) const;

private:
    std::vector<std::pair<QLatin1String, qint64>> m_counts;
};

/// What an import gave, and what it told about itself.
struct ImportRun {
    QVector<DefPolygon> objects;
    QVector<Shape> shapes; ///< of the objects
    KindCounts pointsRead; ///< in the point pass
    KindCounts objectsRead; ///< in the passes over the object file; only whole objects count
    QVector<ImportMessage> messages; ///< in order

    /// Whether an error kept the passes for points, or for objects, from reading all of their file.
    bool stopped(bool forPoints) const;
};

/// Is given objects that are not going to change.
using ObjectTaker = std::function<void(const QVector<DefPolygon>&)>;

/// Reads a file as the dialog does; whatever goes wrong is among the messages. A name that is no
/// file's, but a pipe's or a device's, is told and not opened: it is read twice, and from its
/// start.
/// `take`, if given, gets the objects a few hundred at a time as soon as they are built, in their
/// order and all of them.
ImportRun runImport(
    const Format& format, const ImportOptions& options, const ObjectTaker& take = {});

/// Why a name cannot be read from more than once, because it is that of a pipe or a device; empty
/// where it is another one's.
QString pipeOrDeviceTrouble(const QString& fileName);

/// The names of all files that an import may open, whether they are there or not.
QStringList filesOf(const Format& format, const ImportOptions& options);
