#include "importrun.h"

#include "drawing.h"

#include <QDir>

ImportOutcome importDrawing(const ImportOptions& options, const QByteArray& drawing)
{
    const TempFiles folder;
    return importFiles<DxfImport>(options, folder.write(QStringLiteral("objects.dxf"), drawing));
}

ImportOutcome importDrawing(const ImportOptions& options, const QStringList& lines)
{
    return importDrawing(options, encoded(lines));
}

ImportOutcome importDrawings(
    const ImportOptions& options, const QByteArray& objectDrawing, const QByteArray& pointDrawing)
{
    const TempFiles folder;
    return importFiles<DxfImport>(options,
        folder.write(QStringLiteral("objects.dxf"), objectDrawing),
        folder.write(QStringLiteral("points.dxf"), pointDrawing));
}

QVector<DefPoint> pointsOf(const PointCatalogue& catalogue)
{
    QVector<DefPoint> points;
    for (int i = 0; i < catalogue.size(); ++i)
        points << catalogue.at(i);
    return points;
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
