#include "commands.h"
static QList<QCommandLineOption> none()
{
    return {};
}
static ExitStatus run(const QCommandLineParser&)
{
    return Done;
}
const Command checkCommand{ "check", "ФАЙЛ... [--json] [параметры]",
    "Проверить файлы и объяснить, что в них не так.", none, run, false };
