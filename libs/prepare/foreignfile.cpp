#include "prepare/foreignfile.h"

#include "import/formats.h"
#include "prepare/mifheader.h"
#include "prepare/mifreader.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QVector>

#include <algorithm>
#include <iterator>
#include <optional>

namespace prep {

namespace {

constexpr const char* suffixes[] = { "tab", "shp", "gpkg", "geojson", "kml", "gml", "dwg" };

/// What ends a conversion.
struct Trouble {
    QString text;
};

[[noreturn]] void fail(const QString& text)
{
    throw Trouble{ text };
}

/// Makes links to a file and to those that belong to it, so that what the program writes beside its
/// input stays in `folder`. Gives the name of the file there.
QString linkInto(const QString& folder, const QString& fileName)
{
    const QFileInfo file(fileName);
    const QString base = file.completeBaseName();
    for (const QFileInfo& other : file.absoluteDir().entryInfoList(QDir::Files)) {
        if (other.completeBaseName().compare(base, Qt::CaseInsensitive) == 0)
            QFile::link(other.absoluteFilePath(), QDir(folder).filePath(other.fileName()));
    }
    return QDir(folder).filePath(file.fileName());
}

/// What a program says is wrong: its first error, or else what it said last.
QString complaintOf(const QByteArray& errors)
{
    QStringList lines = QString::fromUtf8(errors).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    // What did not open the file follows: the names of all formats.
    const int failure = lines.indexOf(QStringLiteral("FAILURE:"));
    if (failure >= 0)
        lines = lines.mid(failure + 1, 1);
    for (const QString& line : qAsConst(lines)) {
        if (line.startsWith(QLatin1String("ERROR")))
            return line.simplified();
    }
    return lines.isEmpty() ? QString() : lines.last().simplified();
}

/// How far ogr2ogr is, from what it has written so far: "0...10...20", for example.
std::optional<int> percentOf(const QByteArray& output)
{
    static const QRegularExpression progress(
        QStringLiteral("^0(?:\\.+(\\d+))*\\.*(?: - done\\.)?\\s*$"));
    const QRegularExpressionMatch match = progress.match(QString::fromLatin1(output));
    return match.hasMatch() ? std::optional(match.captured(1).toInt()) : std::nullopt;
}

bool matchesAny(const QStringList& patterns, const QString& name)
{
    return std::any_of(patterns.begin(), patterns.end(), [&name](const QString& pattern) {
        const QString expression = QRegularExpression::wildcardToRegularExpression(pattern);
        return QRegularExpression(expression, QRegularExpression::CaseInsensitiveOption)
            .match(name)
            .hasMatch();
    });
}

using Layer = ForeignLayer;

/// The layers that ogrinfo lists.
QVector<Layer> layersOf(const QByteArray& listing)
{
    static const QRegularExpression column(
        QStringLiteral("^(.*): (?:Integer|Integer64|Real|String|Date|Time|DateTime|Binary)(?:List)?"
                       "(?:\\([^)]*\\))? \\(\\d+\\.\\d+\\)"));
    const QLatin1String name("Layer name: ");
    QVector<Layer> layers;
    for (const QString& line : QString::fromUtf8(listing).split(QLatin1Char('\n'))) {
        if (line.startsWith(name)) {
            layers.append({ line.mid(name.size()), {}, true });
            continue;
        }
        if (layers.isEmpty())
            continue;
        Layer& layer = layers.last();
        if (line == QLatin1String("Geometry: None") || line == QLatin1String("Feature Count: 0"))
            layer.hasObjects = false;
        const QRegularExpressionMatch match = column.match(line);
        if (match.hasMatch())
            layer.columns.append(match.captured(1));
    }
    return layers;
}

Layer chooseLayer(const QVector<Layer>& layers, const PrepareOptions& options)
{
    QVector<Layer> chosen;
    QStringList names;
    for (const Layer& layer : layers) {
        const bool isTaken = options.layers.isEmpty() ? layer.hasObjects || layers.size() == 1
                                                      : matchesAny(options.layers, layer.name);
        if (!isTaken || matchesAny(options.skipLayers, layer.name))
            continue;
        chosen.append(layer);
        names.append(layer.name);
    }
    if (chosen.isEmpty())
        fail(QStringLiteral("в файле нет выбранных слоёв"));
    if (chosen.size() > 1) {
        fail(QStringLiteral("в файле несколько слоёв: %1; выберите один из них: --layers ИМЯ")
                 .arg(names.join(QStringLiteral(", "))));
    }
    return chosen.first();
}

/// The place of a column, from zero; the case of letters matters only where two differ in it.
int columnOf(const Layer& layer, const QString& name)
{
    int index = layer.columns.indexOf(name);
    for (int i = 0; index < 0 && i < layer.columns.size(); ++i) {
        if (layer.columns.at(i).compare(name, Qt::CaseInsensitive) == 0)
            index = i;
    }
    if (index < 0) {
        fail(QStringLiteral("нет столбца «%1» (--name-field), есть: %2")
                 .arg(name, layer.columns.join(QStringLiteral(", "))));
    }
    return index;
}

/// The number of columns that the header of a MIF file tells.
int columnCountOf(const QString& mifFileName)
{
    constexpr int longestHeader = 1 << 20;
    QFile file(mifFileName);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray bytes = file.read(longestHeader);
    MifReader reader({ bytes.constData(), static_cast<size_t>(bytes.size()) });
    std::vector<std::string_view> lines;
    return reader.readHeader(lines) ? static_cast<int>(MifHeader(lines).columnCount()) : 0;
}

class ForeignConversion {
public:
    ForeignConversion(
        const PrepareOptions& options, const QTemporaryDir& folder, const ForeignWatcher& watcher)
        : m_options(options)
        , m_hasFolder(folder.isValid())
        , m_folder(folder.path())
        , m_watcher(watcher)
        , m_ogr2ogr(findProgram("ogr2ogr"))
        , m_ogrinfo(findProgram("ogrinfo"))
    {
    }

    QVector<Layer> list(const QString& fileName)
    {
        link(fileName);
        return layers();
    }

    ForeignPair run(const QString& fileName)
    {
        link(fileName);
        const QVector<Layer> all = layers();
        const Layer layer = chooseLayer(all, m_options);
        ForeignPair pair{ {}, {}, leftOptions(layer) };
        pair.mifFileName = convert(m_source, layer, all.size() > 1);
        // A column that the program left out would move those behind it.
        if (pair.options.nameColumn && columnCountOf(pair.mifFileName) != layer.columns.size())
            fail(QStringLiteral("программа ogr2ogr перевела не все столбцы; --name-field с этим "
                                "файлом не действует"));
        return pair;
    }

private:
    void link(const QString& fileName)
    {
        if (!QFileInfo(fileName).isFile())
            fail(QStringLiteral("файл не открывается"));
        if (!m_hasFolder || !m_folder.mkdir(QStringLiteral("in")))
            fail(QStringLiteral("не удаётся создать временную папку"));
        m_source = linkInto(m_folder.filePath(QStringLiteral("in")), fileName);
    }

    QVector<Layer> layers() const
    {
        return layersOf(runProgram(m_ogrinfo,
            { QStringLiteral("-ro"), QStringLiteral("-so"), QStringLiteral("-al"),
                QStringLiteral("-nomd"), m_source }));
    }

    static QString findProgram(const char* name)
    {
        QString program = QStandardPaths::findExecutable(QString::fromLatin1(name));
        if (program.isEmpty()) {
            fail(QStringLiteral("этот формат читается программой %1, а её нет; её приносит пакет "
                                "gdal-bin")
                     .arg(QString::fromLatin1(name)));
        }
        return program;
    }

    /// The program has decoded the texts, and its layers are no drawing's. MIF has no letters but
    /// Latin ones in names of columns, so that the place tells the column.
    PrepareOptions leftOptions(const Layer& layer) const
    {
        PrepareOptions left = m_options;
        if (!m_options.nameField.isEmpty())
            left.nameColumn = columnOf(layer, m_options.nameField);
        left.fromEncoding = "UTF-8";
        left.nameField.clear();
        left.layers.clear();
        left.skipLayers.clear();
        return left;
    }

    QString convert(const QString& source, const Layer& layer, bool isOneOfSeveral)
    {
        const QString target = m_folder.filePath(QStringLiteral("out"));
        QStringList arguments{ QStringLiteral("-f"), QStringLiteral("MapInfo File"),
            QStringLiteral("-dsco"), QStringLiteral("FORMAT=MIF"), QStringLiteral("-dim"),
            QStringLiteral("XY"), QStringLiteral("-progress"), QStringLiteral("-nln"),
            QStringLiteral("objects"), QStringLiteral("-mapFieldType"),
            QStringLiteral("IntegerList=String,Integer64List=String,RealList=String,"
                           "StringList=String,Binary=String") };
        // A MIF file without a column is none for the program.
        const bool hasQuery = layer.columns.isEmpty() || m_options.withoutNames;
        if (hasQuery) {
            arguments << QStringLiteral("-dialect") << QStringLiteral("OGRSQL")
                      << QStringLiteral("-sql") << QLatin1Char('@') + queryFor(layer);
        }
        arguments << target << source;
        if (!hasQuery && isOneOfSeveral)
            arguments << layer.name;
        runProgram(m_ogr2ogr, arguments);
        return QDir(target).filePath(QStringLiteral("objects.mif"));
    }

    /// A name for a column that the layer does not have; the program knows no case of letters.
    static QString unusedName(const Layer& layer)
    {
        QString name = QStringLiteral("NAME");
        while (layer.columns.contains(name, Qt::CaseInsensitive))
            name += QLatin1Char('_');
        return name;
    }

    /// Gives the name of a file with a query that puts a column of blanks before the others.
    QString queryFor(const Layer& layer) const
    {
        QString name = layer.name;
        name.replace(QLatin1Char('"'), QLatin1String("\\\""));
        QFile file(m_folder.filePath(QStringLiteral("query.sql")));
        if (file.open(QIODevice::WriteOnly))
            file.write(QStringLiteral("SELECT '' AS %1%2 FROM \"%3\"")
                           .arg(unusedName(layer),
                               layer.columns.isEmpty() ? QString() : QStringLiteral(", *"), name)
                           .toUtf8());
        return file.fileName();
    }

    /// Runs a program to its end, and gives what it wrote to standard output.
    QByteArray runProgram(const QString& program, QStringList arguments) const
    {
        constexpr int glance = 100; // ms
        if (!m_options.fromEncoding.isEmpty())
            arguments << QStringLiteral("--config") << QStringLiteral("SHAPE_ENCODING")
                      << QString::fromLatin1(m_options.fromEncoding);
        QProcess process;
        process.setStandardInputFile(QProcess::nullDevice());
        process.start(program, arguments);
        const QString name = QFileInfo(program).fileName();
        if (!process.waitForStarted())
            fail(QStringLiteral("программа %1 не запускается").arg(name));
        QByteArray output;
        while (!process.waitForFinished(glance) && process.state() != QProcess::NotRunning) {
            output += process.readAllStandardOutput();
            const auto percent = percentOf(output);
            if (percent && m_watcher.converted)
                m_watcher.converted(*percent);
            if (m_watcher.isCancelled())
                process.kill();
        }
        output += process.readAllStandardOutput();
        if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
            return output;
        const QByteArray said = percentOf(output) ? QByteArray() : output;
        QString complaint = complaintOf(process.readAllStandardError() + said);
        complaint.remove(m_folder.filePath(QStringLiteral("in")) + QLatin1Char('/'));
        fail(QStringLiteral("программа %1 не прочитала файл: %2").arg(name, complaint));
    }

    const PrepareOptions& m_options;
    bool m_hasFolder;
    QDir m_folder;
    QString m_source; ///< a link to the file
    const ForeignWatcher& m_watcher;
    QString m_ogr2ogr;
    QString m_ogrinfo;
};

} // namespace

QStringList foreignSuffixes()
{
    QStringList names;
    for (const char* suffix : suffixes)
        names.append(QLatin1String(suffix));
    return names;
}

QString layerPattern(const QString& name)
{
    QString pattern;
    for (const QChar letter : name) {
        const bool isSign = QStringLiteral("*?[").contains(letter);
        pattern += isSign ? QStringLiteral("[%1]").arg(letter) : QString(letter);
    }
    return pattern;
}

ForeignLayers listForeignLayers(
    const QString& fileName, const QTemporaryDir& folder, const ForeignWatcher& watcher)
{
    try {
        const PrepareOptions options;
        return { ForeignConversion(options, folder, watcher).list(fileName), {} };
    } catch (const Trouble& trouble) {
        return { {}, trouble.text };
    }
}

const Format* formatOfForeignFile(const QString& fileName)
{
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    const bool isKnown = std::any_of(std::begin(suffixes), std::end(suffixes),
        [&suffix](const char* known) { return suffix == QLatin1String(known); });
    return isKnown ? formatOfId(QStringLiteral("mif")) : nullptr;
}

ForeignPair convertForeignFile(const QString& fileName, const PrepareOptions& options,
    const QTemporaryDir& folder, const ForeignWatcher& watcher)
{
    try {
        return ForeignConversion(options, folder, watcher).run(fileName);
    } catch (const Trouble& trouble) {
        return { {}, trouble.text, {} };
    }
}

} // namespace prep
