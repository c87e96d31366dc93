#include "outputs.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextCodec>

#include <algorithm>
#include <iterator>

namespace {

/// How a drawing is written in each format.
constexpr struct {
    const char* id;
    void (*write)(const Drawing&, const QString& prefix, const QTextCodec* codec);
} writers[] = {
    { "mif", writeMif },
    { "dxf", writeDxf },
};

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Writes files to measure imports with; the same options give the same bytes."));
    parser.addHelpOption();
    parser.addPositionalArgument(
        QStringLiteral("prefix"), QStringLiteral("Path and first part of the names of the files."));
    const QCommandLineOption layout(QStringLiteral("layout"),
        layoutNames().join(QLatin1String(", ")), QStringLiteral("name"), QStringLiteral("city"));
    const QCommandLineOption format(QStringLiteral("format"), QStringLiteral("mif or dxf"),
        QStringLiteral("name"), QStringLiteral("mif"));
    const QCommandLineOption vertices(QStringLiteral("vertices"),
        QStringLiteral("about so many vertices"), QStringLiteral("number"),
        QStringLiteral("1000000"));
    const QCommandLineOption encoding(QStringLiteral("encoding"),
        QStringLiteral("encoding of the texts"), QStringLiteral("name"),
        QStringLiteral("Windows-1251"));
    parser.addOptions({ layout, format, vertices, encoding });
    parser.process(application);

    const auto writer = std::find_if(std::begin(writers), std::end(writers),
        [&](const auto& row) { return parser.value(format) == QLatin1String(row.id); });
    const QTextCodec* codec = QTextCodec::codecForName(parser.value(encoding).toLatin1());
    const int vertexCount = parser.value(vertices).toInt();
    if (parser.positionalArguments().size() != 1 || writer == std::end(writers) || !codec
        || vertexCount <= 0 || !layoutNames().contains(parser.value(layout)))
        parser.showHelp(EXIT_FAILURE);

    Drawing drawing;
    drawing.shapes = makeLayout(parser.value(layout), vertexCount);
    drawing.decimals = layoutDecimals(parser.value(layout));
    drawing.points = distinctVertices(drawing.shapes);
    writer->write(drawing, parser.positionalArguments().constFirst(), codec);
    return EXIT_SUCCESS;
}
