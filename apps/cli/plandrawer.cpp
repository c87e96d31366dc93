#include "plandrawer.h"

#include <QDir>
#include <QLibrary>

namespace {

const PlanDrawer* loadPlanDrawer()
{
    const QDir program(QCoreApplication::applicationDirPath());
    // A program that has been removed has no folder: what is in the current one is not its own.
    if (program.isRelative())
        return nullptr;
    for (const char* folder : { ".", "../" INSTALLED_DRAWER }) {
        const QString file = QDir(program.filePath(QString::fromUtf8(folder)))
                                 .absoluteFilePath(QStringLiteral(DRAWER_FILE));
        const auto makeDrawer =
            reinterpret_cast<const PlanDrawer* (*)()>(QLibrary::resolve(file, planDrawerFunction));
        if (makeDrawer)
            return makeDrawer();
    }
    return nullptr;
}

} // namespace

const PlanDrawer* planDrawer()
{
    static const PlanDrawer* const drawer = loadPlanDrawer();
    return drawer;
}
