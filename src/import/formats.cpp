#include "import/formats.h"

#include "import/dxfimport.h"
#include "import/mifimport.h"

#include <QFileInfo>

#include <algorithm>

namespace {

const QString strImportFromMif = QString::fromUtf8("Объекты из MIF");
const QString strImportFromDxf = QString::fromUtf8("Объекты из DXF");

template <typename Importer>
std::unique_ptr<MapImport> make()
{
    return std::make_unique<Importer>();
}

QString noCompanion(const QString&)
{
    return {};
}

template <typename Predicate>
const Format* findFormat(Predicate isWanted)
{
    const auto found = std::find_if(formats().cbegin(), formats().cend(), isWanted);
    return found == formats().cend() ? nullptr : &*found;
}

} // namespace

const std::vector<Format>& formats()
{
    static const std::vector<Format> rows{
        { QStringLiteral("mif"), strImportFromMif, QStringLiteral("mif"),
            QStringLiteral("Файлы mif (*.mif)"), make<MifImport>, midFileName },
        { QStringLiteral("dxf"), strImportFromDxf, QStringLiteral("dxf"),
            QStringLiteral("Файлы dxf (*.dxf)"), make<DxfImport>, noCompanion },
    };
    return rows;
}

const Format* formatOfOperation(const QString& operation)
{
    return findFormat([&](const Format& format) { return format.operation == operation; });
}

const Format* formatOfId(const QString& id)
{
    return findFormat([&](const Format& format) { return format.id == id; });
}

const Format* formatOfFile(const QString& fileName)
{
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    return findFormat([&](const Format& format) { return format.suffix == suffix; });
}
