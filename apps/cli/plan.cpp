#include "commands.h"
static QList<QCommandLineOption> none()
{
    return {};
}
static ExitStatus run(const QCommandLineParser&)
{
    return Done;
}
const Command planCommand{ "plan", "ФАЙЛ... -o ФАЙЛ.svg|ФАЙЛ.png [параметры]",
    "Нарисовать план объектов.", none, run, true };
