#include "preparearguments.h"

#include "console.h"
#include "importarguments.h"

#include <QCommandLineParser>

#include <cmath>
#include <limits>

namespace {

using prep::PrepareOptions;

double readPositive(const QCommandLineParser& parser, const char* name, double least)
{
    const QString text = parser.value(QString::fromLatin1(name));
    bool ok = false;
    const double number = text.toDouble(&ok);
    if (ok && std::isfinite(number) && number >= least)
        return number;
    throw Failure{ WrongUsage,
        QStringLiteral("--%1: ожидается число не меньше %2, а не «%3»")
            .arg(QString::fromLatin1(name), QString::number(least), text) };
}

/// The place of the option's value among the choices, which stand in the option's help.
int readChoice(const QCommandLineParser& parser, const char* name, const QStringList& choices)
{
    const QString value = parser.value(QString::fromLatin1(name));
    const int index = choices.indexOf(value);
    if (index >= 0)
        return index;
    throw Failure{ WrongUsage,
        QStringLiteral("--%1: ожидается %2, а не «%3»")
            .arg(QString::fromLatin1(name), choices.join(QStringLiteral(" или ")), value) };
}

void readLabels(const QString& text, PrepareOptions& options)
{
    options.texts = options.mtexts = options.attributes = options.dimensions = false;
    for (const QString& kind : text.split(QLatin1Char(','))) {
        bool* const wanted = kind == QLatin1String("text") ? &options.texts
            : kind == QLatin1String("mtext")               ? &options.mtexts
            : kind == QLatin1String("attrib")              ? &options.attributes
            : kind == QLatin1String("dimension")           ? &options.dimensions
                                                           : nullptr;
        if (!wanted) {
            throw Failure{ WrongUsage,
                QStringLiteral("--labels: ожидается text, mtext, attrib, dimension через запятую, "
                               "а не «%1»")
                    .arg(text) };
        }
        *wanted = true;
    }
}

/// Repair touches no geometry and leaves nothing out.
void checkLevel(const PrepareOptions& options)
{
    if (options.level == prep::Level::Repair
        && (options.swapXY || options.scale != 1 || options.join || options.visibleOnly
            || !options.layers.isEmpty() || !options.skipLayers.isEmpty())) {
        throw Failure{ WrongUsage,
            QStringLiteral("--swap-xy, --scale, --join, --visible, --layers и --skip-layers "
                           "действуют только с --level flatten") };
    }
}

} // namespace

QByteArray readCodec(const QCommandLineParser& parser, const char* name)
{
    const QString option = QString::fromLatin1(name);
    if (!parser.isSet(option))
        return {};
    const QByteArray encoding = encodingOf(parser.value(option));
    return encoding == "auto" ? QByteArray() : encoding;
}

QList<QCommandLineOption> preparationOptions()
{
    const auto option = [](const char* name, const char* text, const char* value = "",
                            const char* defaultValue = "") {
        return QCommandLineOption(QString::fromLatin1(name), QString::fromUtf8(text),
            QString::fromUtf8(value), QString::fromLatin1(defaultValue));
    };
    return {
        option("level",
            "Что делать: repair - только исправить запись, flatten - ещё и разбить блоки и кривые; "
            "без параметра - flatten.",
            "repair|flatten", "flatten"),
        option("tolerance",
            "Наибольшее отклонение хорды от кривой в единицах файла; без параметра - 0.01.",
            "ЧИСЛО", "0.01"),
        option("blocks", "Вставки блоков: auto, explode или points; без параметра - auto.",
            "auto|explode|points", "auto"),
        option("circles", "Окружности: points или contours; без параметра - points.",
            "points|contours", "points"),
        option("layers", "Взять только слои по образцу; можно повторять.", "ОБРАЗЕЦ"),
        option("skip-layers", "Пропустить слои по образцу; можно повторять.", "ОБРАЗЕЦ"),
        option("visible", "Взять только видимое."),
        option("labels",
            "Какие надписи взять, через запятую: text, mtext, attrib, dimension; без параметра - "
            "text,mtext,attrib.",
            "ВИДЫ", "text,mtext,attrib"),
        option("join", "Соединить в контуры линии, концы которых сходятся ближе ЧИСЛА.", "ЧИСЛО"),
        option("hatch", "Записать и границы штриховок."),
        option("from-encoding", "Кодировка исходных файлов; без параметра - по байтам.", "ИМЯ"),
        option("name-field", "Столбец обозначений в MIF; он становится первым.", "СТОЛБЕЦ"),
        option("swap-xy", "Переставить координаты."),
        option("scale", "Умножить координаты на число.", "ЧИСЛО"),
    };
}

prep::PrepareOptions readPreparationOptions(const QCommandLineParser& parser)
{
    constexpr double leastTolerance = 1e-9;
    const auto list = [](const char* words) {
        return QString::fromLatin1(words).split(QLatin1Char(' '));
    };
    prep::PrepareOptions options;
    options.level = static_cast<prep::Level>(readChoice(parser, "level", list("repair flatten")));
    options.tolerance = readPositive(parser, "tolerance", leastTolerance);
    options.blocks =
        static_cast<prep::BlockMode>(readChoice(parser, "blocks", list("auto explode points")));
    options.circles =
        static_cast<prep::CircleMode>(readChoice(parser, "circles", list("points contours")));
    options.layers = parser.values(QStringLiteral("layers"));
    options.skipLayers = parser.values(QStringLiteral("skip-layers"));
    options.visibleOnly = parser.isSet(QStringLiteral("visible"));
    readLabels(parser.value(QStringLiteral("labels")), options);
    if (parser.isSet(QStringLiteral("join")))
        options.join = readPositive(parser, "join", 0);
    options.hatches = parser.isSet(QStringLiteral("hatch"));
    options.fromEncoding = readCodec(parser, "from-encoding");
    options.nameField = parser.value(QStringLiteral("name-field"));
    options.swapXY = parser.isSet(QStringLiteral("swap-xy"));
    if (parser.isSet(QStringLiteral("scale")))
        options.scale = readPositive(parser, "scale", std::numeric_limits<double>::min());
    checkLevel(options);
    return options;
}
