#include "survey/causes.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <iterator>

namespace {

struct CauseTexts {
    Cause cause;
    const char* id;
    const char* text; ///< %1 is the detail, %2 the count
    const char* remedy; ///< %1 is the detail, %f the file, %p the command that prepares it
};

constexpr CauseTexts causeTexts[] = {
    { Cause::EmptyFile, "empty-file", "Файл пуст.", "Получите файл заново." },
    { Cause::NotText, "not-text", "Это не текстовый файл, а %1.",
        "Двоичный DXF запишет текстом команда: %p; DWG сохраните в программе черчения как "
        "текстовый "
        "(ASCII) DXF." },
    { Cause::OtherFormat, "other-format", "Под этим именем лежит файл другого вида: %1.",
        "Выгрузите объекты в MIF или DXF из программы, в которой файл сделан." },
    { Cause::BlankFirstLine, "blank-first-line",
        "Файл начинается с пустой строки, и поэтому его начало не узнаётся.",
        "Исправленную копию пишет команда: %p" },
    { Cause::LeadingComment, "leading-comment",
        "Файл начинается с комментария (код 999), а читается только файл, который начинается с "
        "раздела HEADER.",
        "Исправленную копию пишет команда: %p" },
    { Cause::MissingHeader, "missing-header",
        "Файл начинается с раздела %1, а читается только файл, который начинается с раздела "
        "HEADER.",
        "Исправленную копию пишет команда: %p" },
    { Cause::NotDxf, "not-dxf", "Файл не начинается так, как начинается DXF.",
        "Проверьте, тот ли это файл, и сохраните чертёж в DXF заново." },
    { Cause::BlockInsertsOnly, "block-inserts",
        "В чертеже нет линий и полилиний, а содержимое блоков (вставок: %2) не читается.",
        "Копию с разбитыми блоками пишет команда: %p" },
    { Cause::MTextOnly, "mtext",
        "Надписи записаны как MTEXT (%2), а обозначения ищутся только в TEXT.",
        "Копию с надписями TEXT пишет команда: %p" },
    { Cause::UnsortedTexts, "unsorted-texts",
        "В чертеже нет точек, поэтому надписи (%2) не упорядочены и объект может получить не "
        "ближайшую.",
        "Отключите поиск обозначений точек (--search-points off), укажите файл точек (--points) "
        "или сделайте копию командой: %p" },
    { Cause::ClosedFlag, "closed-flag",
        "Замкнутые полилинии POLYLINE (%2) прочитаны незамкнутыми: их флаг 70 равен %1, а "
        "узнаётся только 1.",
        "Исправленную копию пишет команда: %p" },
    { Cause::Bulges, "bulges", "Дуговые отрезки полилиний (%2) прочитаны прямыми.",
        "Копию, в которой дуги заменены хордами, пишет команда: %p" },
    { Cause::LeftOut, "left-out", "Не прочитана часть элементов: %1.",
        "Копию, в которой они разбиты на линии и надписи, пишет команда: %p" },
    { Cause::HiddenLayers, "hidden-layers",
        "Прочитаны и элементы замороженных или выключенных слоёв: %2.",
        "Копию без них пишет команда: %p --visible" },
    { Cause::PaperSpace, "paper-space",
        "Прочитаны как объекты и элементы листа (оформление чертежа): %2.",
        "Копию без них пишет команда: %p" },
    { Cause::Mesh, "mesh", "Сети POLYLINE (%2) прочитаны как полилинии.",
        "Копию без сетей пишет команда: %p" },
    { Cause::OneVertex, "one-vertex", "В полилинии LWPOLYLINE одна вершина; таких полилиний: %2.",
        "Копию без них пишет команда: %p" },
    { Cause::MifHeader, "mif-header",
        "Первые три строки файла должны быть Version, Charset и Delimiter со значением, а на "
        "месте строки %1 стоит другое.",
        "Исправленную копию пишет команда: %p" },
    { Cause::Delimiter, "delimiter",
        "Разделитель столбцов в строке Delimiter - пробел или табуляция, и такой заголовок не "
        "принимается.",
        "Копию с запятой пишет команда: %p" },
    { Cause::DelimiterMissing, "delimiter-missing",
        "В начале файла нет строки Delimiter: столбцы файла MID разделены табуляцией, а такой "
        "заголовок не принимается.",
        "Копию с запятой пишет команда (вписать Delimiter одной строкой мало): %p" },
    { Cause::MidDelimiter, "mid-delimiter",
        "Строки файла MID не делятся на столбцы разделителем из строки Delimiter, в них стоит %1: "
        "обозначением становится вся строка.",
        "Впишите этот разделитель в строку Delimiter или выгрузите пару файлов заново." },
    { Cause::NoData, "no-data", "В файле нет строки Data, после которой стоят объекты.",
        "Получите файл заново: он, видимо, оборван." },
    { Cause::MidOtherCase, "mid-other-case",
        "Файл MID есть, но его имя отличается регистром букв: %1.",
        "Переименуйте его так, как указано в сообщении об ошибке, или сделайте копию командой: "
        "%p" },
    { Cause::MidMissing, "mid-missing", "Рядом с файлом MIF нет файла MID.",
        "Положите файл MID рядом или импортируйте без него: --search-points off --search-objects "
        "off." },
    { Cause::MidUnreadable, "mid-unreadable", "Файл MID есть, но открыть его не удаётся.",
        "Проверьте, файл ли это и есть ли право его читать." },
    { Cause::MidBlankRow, "mid-blank-row",
        "В файле MID вместо строки объекта пустая строка: её значение пусто или разорвано "
        "переводом строки.",
        "Исправленную копию пишет команда: %p" },
    { Cause::MidTooShort, "mid-too-short", "В файле MID меньше строк, чем объектов в MIF.",
        "Выгрузите пару файлов MIF и MID заново; копию с пустыми строками вместо недостающих пишет "
        "команда: %p" },
    { Cause::MidTooLong, "mid-too-long",
        "В файле MID строк больше, чем объектов в MIF, на %2: обозначения могли достаться чужим "
        "объектам.",
        "Копию, в которой разорванные строки соединены, пишет команда: %p" },
    { Cause::Collection, "collection",
        "В файле есть коллекция (COLLECTION), на ней чтение заканчивается.",
        "Копию, в которой коллекции разобраны на объекты, пишет команда: %p" },
    { Cause::CountOnNextLine, "count-on-next-line",
        "Число частей или вершин объекта %1 стоит не в одной строке с ним.",
        "Исправленную копию пишет команда: %p" },
    { Cause::BlankLine, "blank-line",
        "Пустая строка стоит там, где файл не может продолжаться; пустых строк отсюда до конца "
        "файла: %2.",
        "Копию без таких строк пишет команда: %p" },
    { Cause::TrailingBlankLine, "trailing-blank-line",
        "После последней пары строк файла стоит пустая строка.",
        "Исправленную копию пишет команда: %p" },
    { Cause::BadObject, "bad-object",
        "Объект %1 записан не полностью или содержит не число на месте числа.",
        "Исправьте объект в этом месте, выгрузите файл заново или сделайте копию без него "
        "командой: %p" },
    { Cause::NothingInside, "nothing-inside", "В файле нет ни одного объекта.",
        "Проверьте, тот ли это файл, и выгрузите его заново." },
    { Cause::NoObjects, "no-objects", "В файле нет объектов, из которых складываются контуры: %1.",
        "Если это файл точек, укажите его параметром --points; кривые и надписи переведёт команда: "
        "%p" },
    { Cause::Axes, "axes", "Север и восток переставлены: %1.",
        "Поменяйте местами номера столбцов X и Y (--columns) или сделайте копию командой: %p "
        "--swap-xy" },
    { Cause::Degrees, "degrees",
        "Координаты записаны в градусах, а допуск 0.01 и два знака после запятой рассчитаны на "
        "метры: вершины сливаются.",
        "Пересчитайте координаты в метры, например командой: ogr2ogr -f \"MapInfo File\" -dsco "
        "FORMAT=MIF -s_srs EPSG:4326 -t_srs EPSG:%1 %o %f" },
    { Cause::Encoding, "encoding", "Байты файла похожи на %1, а выбрана другая кодировка.",
        "Выберите кодировку %1 (--encoding %1 или --encoding auto)." },
};

/// What no drawing has.
constexpr Cause causesOfMif[] = { Cause::MifHeader, Cause::Delimiter, Cause::DelimiterMissing,
    Cause::MidDelimiter, Cause::NoData, Cause::MidOtherCase, Cause::MidMissing,
    Cause::MidUnreadable, Cause::MidBlankRow, Cause::MidTooShort, Cause::MidTooLong,
    Cause::Collection, Cause::CountOnNextLine, Cause::Degrees };

const CauseTexts& textsOf(Cause cause)
{
    return *std::find_if(std::begin(causeTexts), std::end(causeTexts),
        [cause](const CauseTexts& texts) { return texts.cause == cause; });
}

/// Stands for what only a file tells.
const QString ellipsis = QStringLiteral("…");

/// A name as a shell takes it for one word, and a command for no option.
QString quoted(const QString& name)
{
    if (name.startsWith(QLatin1Char('-')))
        return quoted(QStringLiteral("./") + name);
    static const QRegularExpression special(
        QStringLiteral("[^\\w./+,:@%=-]"), QRegularExpression::UseUnicodePropertiesOption);
    if (!name.contains(special))
        return name;
    return QLatin1Char('\'') + QString(name).replace(QLatin1Char('\''), QLatin1String("'\\''"))
        + QLatin1Char('\'');
}

/// A new name beside the file, with an ending such as "-готов" before its suffix.
QString besideName(const QString& fileName, const QString& ending, const QString& suffix)
{
    const QFileInfo info(fileName);
    const QString folder = fileName.left(fileName.size() - info.fileName().size());
    return folder + info.completeBaseName() + ending + QLatin1Char('.') + suffix;
}

QString prepareCommandLine(const QString& fileName)
{
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    return QStringLiteral("importgeometry prepare %1 -o %2")
        .arg(quoted(fileName), quoted(besideName(fileName, QStringLiteral("-готов"), suffix)));
}

QString filled(const char* text, const QString& detail, const QString& count)
{
    return QString::fromUtf8(text)
        .replace(QLatin1String("%2"), count)
        .replace(QLatin1String("%1"), detail);
}

QString remedyFor(Cause cause, const QString& file, const QString& detail, const QString& count)
{
    return filled(textsOf(cause).remedy, detail, count)
        .replace(QLatin1String("%o"),
            quoted(besideName(file, QStringLiteral("-метры"), QStringLiteral("mif"))))
        .replace(QLatin1String("%p"), prepareCommandLine(file))
        .replace(QLatin1String("%f"), quoted(file));
}

} // namespace

std::vector<Cause> allCauses()
{
    std::vector<Cause> causes;
    for (const CauseTexts& texts : causeTexts)
        causes.push_back(texts.cause);
    return causes;
}

std::optional<Cause> causeOfId(const QString& id)
{
    const auto found = std::find_if(std::begin(causeTexts), std::end(causeTexts),
        [&id](const CauseTexts& texts) { return id == QLatin1String(texts.id); });
    return found == std::end(causeTexts) ? std::optional<Cause>() : found->cause;
}

QString causeId(Cause cause)
{
    return QString::fromLatin1(textsOf(cause).id);
}

QString causeText(const FoundCause& found)
{
    return filled(textsOf(found.cause).text, found.detail, QString::number(found.count));
}

bool isMendedByCopy(Cause cause)
{
    return QLatin1String(textsOf(cause).remedy).contains(QLatin1String("%p"));
}

QString remedyText(const FoundCause& found)
{
    return remedyFor(found.cause, found.source, found.detail, QString::number(found.count));
}

QString generalCauseText(Cause cause)
{
    return filled(textsOf(cause).text, ellipsis, ellipsis);
}

QString generalRemedyText(Cause cause)
{
    const bool isOfMif =
        std::find(std::begin(causesOfMif), std::end(causesOfMif), cause) != std::end(causesOfMif);
    return remedyFor(cause, isOfMif ? QStringLiteral("ФАЙЛ.mif") : QStringLiteral("ФАЙЛ.dxf"),
        ellipsis, ellipsis);
}
