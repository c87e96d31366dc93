#include "survey/causes.h"

#include <algorithm>
#include <iterator>

namespace {

struct CauseTexts {
    Cause cause;
    const char* id;
    const char* text; ///< %1 is the detail, %2 the count
    const char* remedy; ///< %1 is the detail
};

constexpr CauseTexts causeTexts[] = {
    { Cause::EmptyFile, "empty-file", "Файл пуст.", "Получите файл заново." },
    { Cause::NotText, "not-text", "Это не текстовый файл, а %1.",
        "Сохраните чертёж в текстовом (ASCII) формате DXF." },
    { Cause::BlankFirstLine, "blank-first-line",
        "Файл начинается с пустой строки, и поэтому его начало не узнаётся.",
        "Удалите пустые строки в начале файла." },
    { Cause::LeadingComment, "leading-comment",
        "Файл начинается с комментария (код 999), а читается только файл, который начинается с "
        "раздела HEADER.",
        "Удалите в начале файла строки «999» вместе со строкой текста после каждой из них." },
    { Cause::MissingHeader, "missing-header",
        "Файл начинается с раздела %1, а читается только файл, который начинается с раздела "
        "HEADER.",
        "Сохраните полный чертёж в DXF или вставьте в начало файла строки 0, SECTION, 2, HEADER, "
        "0, ENDSEC." },
    { Cause::NotDxf, "not-dxf", "Файл не начинается так, как начинается DXF.",
        "Проверьте, тот ли это файл, и сохраните чертёж в DXF заново." },
    { Cause::BlockInsertsOnly, "block-inserts",
        "В чертеже нет линий и полилиний, а содержимое блоков (вставок: %2) не читается.",
        "Разбейте блоки на части (команда EXPLODE) и сохраните чертёж заново." },
    { Cause::MTextOnly, "mtext",
        "Надписи записаны как MTEXT (%2), а обозначения ищутся только в TEXT.",
        "Разбейте надписи MTEXT на строки TEXT (команда EXPLODE) и сохраните чертёж заново." },
    { Cause::UnsortedTexts, "unsorted-texts",
        "В чертеже нет точек, поэтому надписи (%2) не упорядочены и объект может получить не "
        "ближайшую.",
        "Отключите поиск обозначений точек (--search-points off) или укажите файл точек "
        "(--points)." },
    { Cause::ClosedFlag, "closed-flag",
        "Замкнутые полилинии POLYLINE (%2) прочитаны незамкнутыми: их флаг 70 равен %1, а "
        "узнаётся только 1.",
        "Преобразуйте их в LWPOLYLINE (команда CONVERTPOLY) и сохраните чертёж заново." },
    { Cause::Bulges, "bulges", "Дуговые отрезки полилиний (%2) прочитаны прямыми.",
        "Замените дуги ломаными с нужным шагом и сохраните чертёж заново." },
    { Cause::MifHeader, "mif-header",
        "Первые три строки файла должны быть Version, Charset и Delimiter со значением, а на "
        "месте строки %1 стоит другое.",
        "Допишите недостающую строку: Version 300, Charset \"WindowsCyrillic\" или "
        "Delimiter \",\"." },
    { Cause::Delimiter, "delimiter",
        "Разделитель столбцов в строке Delimiter - пробел или табуляция, и такой заголовок не "
        "принимается.",
        "Замените разделитель запятой или точкой с запятой в строке Delimiter и в файле MID." },
    { Cause::NoData, "no-data", "В файле нет строки Data, после которой стоят объекты.",
        "Получите файл заново: он, видимо, оборван." },
    { Cause::MidOtherCase, "mid-other-case",
        "Файл MID есть, но его имя отличается регистром букв: %1.",
        "Переименуйте его так, как указано в сообщении об ошибке." },
    { Cause::MidMissing, "mid-missing", "Рядом с файлом MIF нет файла MID.",
        "Положите файл MID рядом или отключите поиск обозначений точек и объектов." },
    { Cause::MidUnreadable, "mid-unreadable", "Файл MID есть, но открыть его не удаётся.",
        "Проверьте, файл ли это и есть ли право его читать." },
    { Cause::MidBlankRow, "mid-blank-row",
        "В файле MID вместо строки объекта пустая строка: её значение пусто или разорвано "
        "переводом "
        "строки.",
        "Впишите в эту строку значения столбцов, хотя бы пустые кавычки \"\", или уберите "
        "разрыв." },
    { Cause::MidTooShort, "mid-too-short", "В файле MID меньше строк, чем объектов в MIF.",
        "Выгрузите пару файлов MIF и MID заново." },
    { Cause::MidTooLong, "mid-too-long",
        "В файле MID строк больше, чем объектов в MIF, на %2: обозначения могли достаться чужим "
        "объектам.",
        "Уберите из значений столбцов переводы строк и выгрузите пару файлов заново." },
    { Cause::Collection, "collection",
        "В файле есть коллекция (COLLECTION), на ней чтение заканчивается.",
        "Разберите коллекции на отдельные объекты и выгрузите файл заново." },
    { Cause::CountOnNextLine, "count-on-next-line",
        "Число частей или вершин объекта %1 стоит не в одной строке с ним.",
        "Перенесите число в конец строки с именем объекта." },
    { Cause::BlankLine, "blank-line", "Пустая строка стоит внутри объекта.",
        "Удалите эту строку." },
    { Cause::TrailingBlankLine, "trailing-blank-line",
        "После последней пары строк файла стоит пустая строка.",
        "Удалите пустые строки в конце файла." },
    { Cause::BadObject, "bad-object",
        "Объект %1 записан не полностью или содержит не число на месте числа.",
        "Исправьте объект в этом месте или выгрузите файл заново." },
    { Cause::NothingInside, "nothing-inside", "В файле нет ни одного объекта.",
        "Проверьте, тот ли это файл, и выгрузите его заново." },
    { Cause::NoObjects, "no-objects", "В файле нет объектов, из которых складываются контуры: %1.",
        "Если это файл точек, укажите его параметром --points; иначе преобразуйте нужные объекты в "
        "полилинии и выгрузите файл заново." },
    { Cause::Axes, "axes", "Север и восток переставлены: %1.",
        "Поменяйте местами номера столбцов X и Y (--columns) или координаты в файле." },
    { Cause::Encoding, "encoding", "Байты файла похожи на %1, а выбрана другая кодировка.",
        "Выберите кодировку %1 (--encoding %1)." },
};

const CauseTexts& textsOf(Cause cause)
{
    return *std::find_if(std::begin(causeTexts), std::end(causeTexts),
        [cause](const CauseTexts& texts) { return texts.cause == cause; });
}

} // namespace

QString causeId(Cause cause)
{
    return QString::fromLatin1(textsOf(cause).id);
}

QString causeText(const FoundCause& found)
{
    QString text = QString::fromUtf8(textsOf(found.cause).text);
    text.replace(QLatin1String("%2"), QString::number(found.count));
    return text.replace(QLatin1String("%1"), found.detail);
}

QString remedyText(const FoundCause& found)
{
    return QString::fromUtf8(textsOf(found.cause).remedy)
        .replace(QLatin1String("%1"), found.detail);
}
