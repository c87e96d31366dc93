#include "readable.h"

#include "importrun/importrun.h"

#include <QDir>

QString pipeTrouble(const QString& fileName)
{
    // What else is said of it there is advice for a command line.
    if (pipeOrDeviceTrouble(fileName).isEmpty())
        return {};
    return QStringLiteral("Ошибка открытия файла %1: это не файл, а канал или устройство")
        .arg(QDir::toNativeSeparators(fileName));
}
