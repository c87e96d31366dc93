#include "hostoptions.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

[[noreturn]] void usageError(const QString& message)
{
    std::fprintf(stderr, "%s\n", qUtf8Printable(message));
    std::exit(EXIT_FAILURE);
}

QCommandLineOption option(
    const char* name, const QString& text, const QString& value, const QString& absent = QString())
{
    return { QLatin1String(name), text, value, absent };
}

void declareOptions(QCommandLineParser& parser)
{
    const QString file = QStringLiteral("файл");
    const QString name = QStringLiteral("имя");
    const QString dir = QStringLiteral("папка");
    parser.addOptions({
        { { QStringLiteral("plugin"), QStringLiteral("library") },
            QStringLiteral("Библиотека модуля импорта."), file },
        option("operation",
            QStringLiteral("Выполнить операцию и закончить работу, без окна программы."), name),
        option("context", QStringLiteral("Имя контекста."), name, QStringLiteral("Форма")),
        option("table", QStringLiteral("Таблица объектов."), name, QStringLiteral("Участки")),
        option("catalogue", QStringLiteral("Таблица каталога координат."), name,
            QStringLiteral("Координаты")),
        option("columns",
            QStringLiteral("Столбцы номера точки, x, y и обозначения объекта, считая с нуля."),
            QStringLiteral("n,x,y,o"), QStringLiteral("0,2,1,1")),
        option("file", QStringLiteral("Файл объектов."), file),
        option("point-file", QStringLiteral("Отдельный файл точек."), file),
        option("encoding", QStringLiteral("Кодировка файлов."), name),
        option("set", QStringLiteral("Значение элемента диалога; можно повторять."),
            QStringLiteral("элемент=значение")),
        { QStringLiteral("auto"),
            QStringLiteral("Пройти диалог без пользователя и без экрана; без операции - "
                           "перечислить операции.") },
        option("screenshots", QStringLiteral("Папка для снимков диалога, без пользователя."), dir),
        { { QStringLiteral("o"), QStringLiteral("output") },
            QStringLiteral("Файл для результата; без него результат печатается."), file },
        option("settings", QStringLiteral("Папка для настроек."), dir),
    });
}

GeometryInfo parseColumns(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char(','));
    QVector<qint32> columns;
    for (const QString& part : parts) {
        bool ok = false;
        columns.append(part.toInt(&ok));
        if (!ok)
            usageError(QStringLiteral("Не номер столбца: \"%1\"").arg(part));
    }
    if (columns.size() != 4)
        usageError(QStringLiteral("Нужны четыре столбца: %1").arg(text));
    return { columns.at(0), columns.at(1), columns.at(2), columns.at(3) };
}

QPair<QString, QString> parseAssignment(const QString& text)
{
    const int sign = text.indexOf(QLatin1Char('='));
    if (sign < 1)
        usageError(QStringLiteral("Нужно элемент=значение: %1").arg(text));
    return { text.left(sign), text.mid(sign + 1) };
}

HostOptions::WidgetValues widgetValues(const QCommandLineParser& parser)
{
    const QString pointFile = parser.value(QStringLiteral("point-file"));
    HostOptions::WidgetValues values{
        { QStringLiteral("objectFileNameEdit"), parser.value(QStringLiteral("file")) },
        { QStringLiteral("usePointFileCheck"), QVariant(!pointFile.isEmpty()).toString() },
        { QStringLiteral("pointFileNameEdit"), pointFile },
    };
    if (parser.isSet(QStringLiteral("encoding")))
        values.append(
            { QStringLiteral("encodingCombo"), parser.value(QStringLiteral("encoding")) });
    for (const QString& text : parser.values(QStringLiteral("set")))
        values.append(parseAssignment(text));
    return values;
}

} // namespace

bool isUnattended(int argc, const char* const* argv)
{
    const auto isAuto = [](const char* argument) { return std::strcmp(argument, "--auto") == 0; };
    if (std::any_of(argv, argv + argc, isAuto))
        return true;
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
    return qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
#else
    return false;
#endif
}

HostOptions readOptions(const QCoreApplication& app)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Каталоги координат: импорт объектов через модуль импорта, правка, "
                       "план, экспорт и печать."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("файлы"),
        QStringLiteral("Формы и чертежи, которые открыть в окне."), QStringLiteral("[файл...]"));
    declareOptions(parser);
    parser.process(app);

    HostOptions options;
    options.pluginPath = parser.value(QStringLiteral("plugin"));
    options.files = parser.positionalArguments();
    options.operation = parser.value(QStringLiteral("operation"));
    options.contextName = parser.value(QStringLiteral("context"));
    options.tableName = parser.value(QStringLiteral("table"));
    options.catalogueTableName = parser.value(QStringLiteral("catalogue"));
    options.info = parseColumns(parser.value(QStringLiteral("columns")));
    options.widgetValues = widgetValues(parser);
    options.screenshotDir = parser.value(QStringLiteral("screenshots"));
    options.outputFile = parser.value(QStringLiteral("output"));
    options.settingsDir = parser.value(QStringLiteral("settings"));
    options.isScripted = parser.isSet(QStringLiteral("auto")) || !options.operation.isEmpty()
        || !options.screenshotDir.isEmpty();
    return options;
}
