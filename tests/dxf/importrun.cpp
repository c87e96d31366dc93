#include "importrun.h"

#include "drawing.h"
#include "status.h"

#include <QDir>
#include <QLocale>

namespace {

QStringList& collectedMessages()
{
    static QStringList messages;
    return messages;
}

void collect(const QString& message)
{
    collectedMessages() << message;
}

} // namespace

QString TestFolder::write(const QString& name, const QByteArray& content) const
{
    QFile file(path(name));
    // A file written over is waited for on some file systems, a new one is not.
    file.remove();
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("Cannot write %s", qPrintable(file.fileName()));
    return file.fileName();
}

MessageCollector::MessageCollector()
{
    collectedMessages().clear();
    setStatusFunc(collect);
}

MessageCollector::~MessageCollector()
{
    setStatusFunc(nullptr);
}

QStringList MessageCollector::messages() const
{
    return collectedMessages();
}

ImportOutcome importFiles(
    const ImportOptions& options, const QString& objectFile, const QString& pointFile)
{
    ImportOutcome outcome;
    DxfImport import;
    import.searchPointDefs = options.searchPointDefs;
    import.searchObjectDefs = options.searchObjectDefs;
    import.swapXY = options.swapXY;
    import.pointPref = options.pointPref;
    import.pointStartNum = options.pointStartNum;
    import.objectPref = options.objectPref;
    import.objectStartNum = options.objectStartNum;
    import.objectFileName = objectFile;
    import.pointFileName = pointFile;
    import.map = &outcome.objects;
    import.setEncoding(options.encoding);

    const MessageCollector collector;
    outcome.result = import.importMap();
    outcome.messages = collector.messages();
    return outcome;
}

ImportOutcome importDrawing(const ImportOptions& options, const QByteArray& drawing)
{
    const TestFolder folder;
    return importFiles(options, folder.write(QStringLiteral("objects.dxf"), drawing));
}

ImportOutcome importDrawing(const ImportOptions& options, const QStringList& lines)
{
    return importDrawing(options, encoded(lines));
}

ImportOutcome importDrawings(
    const ImportOptions& options, const QByteArray& objectDrawing, const QByteArray& pointDrawing)
{
    const TestFolder folder;
    return importFiles(options, folder.write(QStringLiteral("objects.dxf"), objectDrawing),
        folder.write(QStringLiteral("points.dxf"), pointDrawing));
}

QString describe(const QString& def)
{
    return def.isNull() ? QStringLiteral("<null>") : def;
}

QString describe(const DefPoint& point)
{
    constexpr int allDigits = QLocale::FloatingPointShortest;
    return describe(point.def) + QLatin1Char('(') + QString::number(point.x, 'g', allDigits)
        + QLatin1Char(',') + QString::number(point.y, 'g', allDigits) + QLatin1Char(')');
}

QString describe(const DefPolygon& object)
{
    QString text = describe(object.def) + QLatin1Char(':');
    for (const QVector<DefPoint>& contour : object.contours) {
        QStringList vertices;
        for (const DefPoint& vertex : contour)
            vertices << describe(vertex);
        text += QLatin1String(" [") + vertices.join(QLatin1Char(' ')) + QLatin1Char(']');
    }
    return text;
}

QString describeAll(const PointCatalogue& points)
{
    QVector<DefPoint> all;
    for (int i = 0; i < points.size(); ++i)
        all << points.at(i);
    return describeAll(all);
}

QString readError(int line)
{
    return QStringLiteral("Ошибка чтения DXF файла в строке: ") + QString::number(line);
}

QString formatError(const QString& fileName)
{
    return QStringLiteral("Ошибка. Файл ") + QDir::toNativeSeparators(fileName)
        + QStringLiteral(" не соответствует формату DXF");
}
