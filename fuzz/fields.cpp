#include "fieldnumvaluemap.h"
#include "require.h"
#include "support/tempfiles.h"

#include <QSettings>

namespace {

FieldNumValueMap load(const QString& fileName)
{
    QSettings settings(fileName, QSettings::IniFormat);
    settings.beginGroup(QStringLiteral("ImportObjects"));
    FieldNumValueMap map{ { 7, QStringLiteral("to go") } };
    loadFieldMap(settings, map);
    return map;
}

void save(const QString& fileName, const FieldNumValueMap& map)
{
    QSettings settings(fileName, QSettings::IniFormat);
    settings.beginGroup(QStringLiteral("ImportObjects"));
    saveFieldMap(settings, map);
}

} // namespace

/// The input is a settings file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const TempFiles folder;
    static int number = 0;
    const QByteArray text(reinterpret_cast<const char*>(data), static_cast<int>(size));
    // Whatever Qt streams may stand there, and making it of such bytes is Qt's business.
    if (text.contains("@Variant") || text.contains("@DateTime"))
        return -1;
    // Qt remembers what a file of the name held.
    const QString name = QString::number(++number);
    const QString path = folder.write(name, text);

    const FieldNumValueMap map = load(path);
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        require(it.key() >= 0, "keys are columns");
        require(!it.value().isEmpty(), "fields have texts");
    }
    save(path, map);
    require(load(path) == map, "what was saved is loaded");
    folder.remove(name);
    return 0;
}
