#include "import/formats.h"
#include "import/mapimport.h"
#include "status.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

void printMessage(const QString& message)
{
    std::fprintf(stderr, "%s\n", message.toUtf8().constData());
}

qint64 vertexCount(const QVector<DefPolygon>& objects)
{
    qint64 count = 0;
    for (const DefPolygon& object : objects) {
        for (const QVector<DefPoint>& contour : object.contours)
            count += contour.size();
    }
    return count;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Imports a file and only prints the numbers of objects and vertices."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("file"), QStringLiteral("MIF or DXF file."));
    const QCommandLineOption points(QStringLiteral("points"),
        QStringLiteral("separate file of points"), QStringLiteral("file"));
    const QCommandLineOption noPointDefs(
        QStringLiteral("no-point-defs"), QStringLiteral("number every point"));
    const QCommandLineOption noObjectDefs(
        QStringLiteral("no-object-defs"), QStringLiteral("number every object"));
    const QCommandLineOption encoding(QStringLiteral("encoding"),
        QStringLiteral("encoding of the files"), QStringLiteral("name"),
        QStringLiteral("Windows-1251"));
    const QCommandLineOption freeObjects(
        QStringLiteral("free"), QStringLiteral("free the objects before the end"));
    parser.addOptions({ points, noPointDefs, noObjectDefs, encoding, freeObjects });
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(EXIT_FAILURE);

    setStatusFunc(printMessage);
    QVector<DefPolygon> objects;
    const QString fileName = parser.positionalArguments().constFirst();
    const Format* const format = formatOfFile(fileName);
    if (!format)
        parser.showHelp(EXIT_FAILURE);
    ImportOptions options = ImportOptions::offered();
    options.objectFileName = fileName;
    options.pointFileName = parser.value(points);
    options.searchPointDefs = !parser.isSet(noPointDefs);
    options.searchObjectDefs = !parser.isSet(noObjectDefs);
    options.encoding = parser.value(encoding).toLatin1();
    std::unique_ptr<MapImport> importer = format->makeImporter();
    importer->setOptions(options);
    importer->map = &objects;
    if (!importer->importMap() || objects.isEmpty())
        return EXIT_FAILURE;
    std::printf("%d objects, %lld vertices\n", objects.size(),
        static_cast<long long>(vertexCount(objects)));
    importer.reset();
    if (parser.isSet(freeObjects))
        return EXIT_SUCCESS;
    // The objects are what an import is for: in the dialog they stay when it is done.
    std::fflush(stdout);
    std::_Exit(EXIT_SUCCESS);
}
