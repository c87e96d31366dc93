#include "export/exportfile.h"

#include <QFileInfo>
#include <QLocale>

std::optional<ExportFormat> exportFormatOf(const QString& fileName)
{
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    if (suffix == QLatin1String("csv"))
        return ExportFormat::Csv;
    if (suffix == QLatin1String("geojson") || suffix == QLatin1String("json"))
        return ExportFormat::GeoJson;
    if (suffix == QLatin1String("mif"))
        return ExportFormat::Mif;
    return {};
}

QByteArray plainNumber(double value)
{
    return QLocale::c()
        .toString(value, 'f', QLocale::FloatingPointShortest)
        .remove(QLatin1Char(','))
        .toLatin1();
}
