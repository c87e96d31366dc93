#include "commands.h"
#include "explanation.h"
#include "importarguments.h"
#include "interrupt.h"
#include "jobs.h"
#include "outputfile.h"
#include "plandrawer.h"
#include "suggestions.h"

#include <QCommandLineParser>
#include <QThread>
#include <QTranslator>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

namespace {

const Command* const commands[] = { &convertCommand, &checkCommand, &planCommand, &exportCommand,
    &prepareCommand };

/// Gives Qt's parser of command lines Russian texts wherever the program runs.
class ParserTexts : public QTranslator {
public:
    bool isEmpty() const override { return false; }

    QString translate(const char* context, const char* sourceText, const char* disambiguation,
        int n) const override
    {
        Q_UNUSED(disambiguation)
        Q_UNUSED(n)
        static constexpr struct {
            const char* source;
            const char* text;
        } texts[] = {
            { "Options:", "Параметры:" },
            { "Arguments:", "Аргументы:" },
            { "Missing value after '%1'.", "параметру «%1» нужно значение" },
            { "Unexpected value after '%1'.", "параметр «%1» не принимает значения" },
        };
        if (std::strcmp(context, "QCommandLineParser") != 0)
            return {};
        for (const auto& text : texts) {
            if (std::strcmp(sourceText, text.source) == 0)
                return QString::fromUtf8(text.text);
        }
        return {};
    }
};

void printOut(const QString& text)
{
    OutputFile out(standardOutput);
    out.write(text.toLocal8Bit());
    out.commit();
}

QString generalHelp()
{
    QString text = QStringLiteral("Использование: importgeometry КОМАНДА ФАЙЛ... [параметры]\n\n"
                                  "Импорт объектов с каталогами координат из MIF/MID и DXF.\n\n"
                                  "Команды:\n");
    for (const Command* command : commands) {
        text += QStringLiteral("  %1  %2\n")
                    .arg(QString::fromLatin1(command->name), -8)
                    .arg(QString::fromUtf8(command->summary));
    }
    return text
        + QStringLiteral("\nПараметры:\n"
                         "  -h, --help     Показать эту справку.\n"
                         "  -V, --version  Показать версию.\n\n"
                         "Справка по команде: importgeometry help КОМАНДА\n"
                         "Коды завершения: 0 - выполнено, 1 - ошибка импорта или записи,\n"
                         "2 - неверная командная строка, 3 - проверка нашла замечания.\n");
}

QString commandHelp(const Command& command, const QCommandLineParser& parser)
{
    // The first line of Qt's text holds the path of the program.
    const QString text = parser.helpText();
    return QStringLiteral("Использование: importgeometry %1 %2\n")
               .arg(QString::fromLatin1(command.name), QString::fromUtf8(command.usage))
        + text.mid(text.indexOf(QLatin1Char('\n')) + 1);
}

/// The names of all options of a command, with their dashes.
QStringList optionNames(const Command& command)
{
    QStringList names{ QStringLiteral("--help") };
    for (const QCommandLineOption& option : command.options())
        names.append(QStringLiteral("--") + option.names().constLast());
    return names;
}

/// The unknown options as they were typed. Letters behind one dash are an option each; more of
/// them are a long option that lacks a dash.
QStringList unknownArguments(const QCommandLineParser& parser, const QStringList& arguments)
{
    QStringList typed;
    for (const QString& name : parser.unknownOptionNames()) {
        QString text = (name.size() > 1 ? QStringLiteral("--") : QStringLiteral("-")) + name;
        const auto isWord = [&name](const QString& argument) {
            return argument.size() > 2 && argument.startsWith(QLatin1Char('-'))
                && argument.at(1) != QLatin1Char('-') && argument.contains(name);
        };
        const auto word = std::find_if(arguments.cbegin() + 1, arguments.cend(), isWord);
        if (name.size() == 1 && !arguments.contains(text) && word != arguments.cend())
            text = *word;
        if (!typed.contains(text))
            typed.append(text);
    }
    return typed;
}

QString parseErrorText(
    const Command& command, const QCommandLineParser& parser, const QStringList& arguments)
{
    QStringList unknown;
    for (const QString& typed : unknownArguments(parser, arguments)) {
        unknown.append(QStringLiteral("неизвестный параметр «%1»%2")
                           .arg(typed, suggestionText(typed, optionNames(command))));
    }
    return unknown.isEmpty() ? parser.errorText() : unknown.join(QLatin1String(", "));
}

/// The arguments with the number of cores behind a -j or --jobs that has none.
QStringList withAllCores(QStringList arguments)
{
    const int end = arguments.indexOf(QStringLiteral("--"));
    for (int i = (end < 0 ? arguments.size() : end) - 1; i > 0; --i) {
        bool hasNumber = false;
        if (arguments.at(i) != QLatin1String("-j") && arguments.at(i) != QLatin1String("--jobs"))
            continue;
        arguments.value(i + 1).toInt(&hasNumber);
        if (!hasNumber)
            arguments.insert(
                i + 1, QString::number(qBound(1, QThread::idealThreadCount(), maxJobs)));
    }
    return arguments;
}

ExitStatus runCommand(const Command& command, const QStringList& arguments)
{
    const QString help = QStringLiteral("help");
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromUtf8(command.summary));
    parser.addPositionalArgument(
        QStringLiteral("ФАЙЛ"), QStringLiteral("Файлы MIF или DXF."), QStringLiteral("ФАЙЛ..."));
    parser.addOptions(command.options());
    parser.addOption({ { QStringLiteral("h"), help }, QStringLiteral("Показать эту справку.") });
    if (!parser.parse(withAllCores(arguments)))
        throw Failure{ WrongUsage, parseErrorText(command, parser, arguments) };
    if (parser.isSet(help)) {
        printOut(commandHelp(command, parser));
        return Done;
    }
    if (parser.isSet(QStringLiteral("list-encodings"))) {
        printOut(encodingList() + QLatin1Char('\n'));
        return Done;
    }
    if (parser.optionNames().contains(QStringLiteral("explain"))) {
        printOut(explanation(parser.value(QStringLiteral("explain"))));
        return Done;
    }
    if (parser.positionalArguments().isEmpty())
        throw Failure{ WrongUsage, QStringLiteral("не указан ни один файл") };
    return command.run(parser);
}

QStringList commandNames()
{
    QStringList names;
    for (const Command* command : commands)
        names.append(QString::fromLatin1(command->name));
    return names;
}

QString unknownText(const QString& first)
{
    if (first.startsWith(QLatin1Char('-'))) {
        const QStringList options{ QStringLiteral("--help"), QStringLiteral("--version") };
        return QStringLiteral("неизвестный параметр «%1»%2")
            .arg(first, suggestionText(first, options));
    }
    return QStringLiteral("неизвестная команда «%1»%2")
        .arg(first, suggestionText(first, commandNames()));
}

const Command* findCommand(const QString& name)
{
    const auto found = std::find_if(std::begin(commands), std::end(commands),
        [&name](const Command* command) { return name == QLatin1String(command->name); });
    return found == std::end(commands) ? nullptr : *found;
}

ExitStatus run(const Command* command, QStringList arguments)
{
    if (command) {
        arguments.removeAt(1);
        return runCommand(*command, arguments);
    }
    QString first = arguments.value(1);
    if (first == QLatin1String("help") && arguments.size() > 2) {
        first = arguments.at(2);
        if (const Command* const asked = findCommand(first))
            return runCommand(*asked, { arguments.first(), QStringLiteral("--help") });
    } else if (first == QLatin1String("help")) {
        first = QStringLiteral("--help");
    }
    if (first == QLatin1String("-h") || first == QLatin1String("--help")) {
        printOut(generalHelp());
        return Done;
    }
    if (first == QLatin1String("-V") || first == QLatin1String("--version")) {
        printOut(QStringLiteral("importgeometry " PROJECT_VERSION "\n"));
        return Done;
    }
    throw Failure{ WrongUsage,
        first.isEmpty()
            ? QStringLiteral("не указана команда: ") + commandNames().join(QLatin1String(", "))
            : unknownText(first) };
}

/// The arguments; enableCyrillic() must have told how they are decoded.
QStringList argumentsOf(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return arguments;
}

/// `argc` must last as long as the object.
std::unique_ptr<QCoreApplication> makeApplication(const Command* command, int& argc, char** argv)
{
    auto application = std::make_unique<QCoreApplication>(argc, argv);
    const PlanDrawer* const drawer = command && command->draws ? planDrawer() : nullptr;
    if (!drawer)
        return application;
    // There is one at a time; the first told where the program stands, and so the library.
    application.reset();
    return drawer->makeApplication(argc, argv);
}

} // namespace

int main(int argc, char** argv)
{
    enableCyrillic();
    // Libraries end the program without a word where they cannot open theirs.
    constexpr int filesAtLeast = 8;
    if (!canOpenFiles(filesAtLeast)) {
        printError(QStringLiteral("importgeometry: слишком мало файлов можно открыть (ulimit -n)"));
        return Failed;
    }
    Interrupt::install();
    const Command* const command = findCommand(QString::fromLocal8Bit(argc > 1 ? argv[1] : ""));
    // Qt has options of its own, which it would take from the arguments and follow without a word:
    // it is shown no more than the name of the program.
    int nameOnly = std::min(argc, 1);
    const auto application = makeApplication(command, nameOnly, argv);
    ParserTexts texts;
    QCoreApplication::installTranslator(&texts);
    try {
        const ExitStatus status = run(command, argumentsOf(argc, argv));
        Interrupt::obey();
        return status;
    } catch (const Failure& failure) {
        if (!failure.text.isEmpty())
            printError(QStringLiteral("importgeometry: ") + failure.text);
        if (failure.status == WrongUsage)
            printError(QStringLiteral("Справка: importgeometry%1 --help")
                           .arg(command ? QLatin1Char(' ') + QString::fromLatin1(command->name)
                                        : QString()));
        return failure.status;
    } catch (const std::bad_alloc&) {
        printError(QStringLiteral("importgeometry: недостаточно памяти"));
        return Failed;
    }
}
