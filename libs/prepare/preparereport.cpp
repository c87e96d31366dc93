#include "prepare/preparereport.h"

#include "prepare/dxfpaircursor.h"

#include <algorithm>
#include <iterator>

namespace prep {

namespace {

struct NoteRow {
    Note note;
    Effect effect;
    const char* id;
    const char* text;
};

constexpr NoteRow rows[] = {
    { Note::Converted, Effect::Mended, "converted", "файл переведён в MIF программой ogr2ogr" },
    { Note::Binary, Effect::Mended, "binary", "двоичный чертёж записан текстом" },
    { Note::Comments, Effect::Mended, "comments", "убраны комментарии (код 999)" },
    { Note::BlankLines, Effect::Mended, "blank-lines", "убраны пустые строки" },
    { Note::StrayLines, Effect::Mended, "stray-lines", "убраны строки, не составляющие пары" },
    { Note::HeaderAdded, Effect::Mended, "header-added", "добавлен раздел HEADER" },
    { Note::SectionAdded, Effect::Mended, "section-added", "добавлены границы раздела ENTITIES" },
    { Note::EofAdded, Effect::Mended, "eof-added", "добавлен конец файла (EOF)" },
    { Note::ClosingFlag, Effect::Mended, "closing-flag",
        "флаг замкнутости записан так, как он читается" },
    { Note::VertexCount, Effect::Mended, "vertex-count", "исправлено число вершин (код 90)" },
    { Note::SeqendAdded, Effect::Mended, "seqend-added", "добавлен конец полилинии (SEQEND)" },
    { Note::Transcoded, Effect::Mended, "transcoded", "файл перекодирован" },
    { Note::InsertExploded, Effect::Mended, "insert-exploded", "вставки блоков разбиты на части" },
    { Note::InsertAsPoint, Effect::Mended, "insert-as-point", "вставки блоков записаны точками" },
    { Note::CircleAsPoint, Effect::Mended, "circle-as-point",
        "окружности записаны точками (контурами - с --circles contours)" },
    { Note::MissingBlock, Effect::Mended, "missing-block",
        "вставки блоков, которых нет в файле, записаны точками" },
    { Note::FromBlock, Effect::Mended, "from-block", "взято из блоков" },
    { Note::Bulges, Effect::Mended, "bulges", "дуговые отрезки полилиний заменены хордами" },
    { Note::Chords, Effect::Mended, "chords", "кривые заменены хордами" },
    { Note::Extrusion, Effect::Mended, "extrusion",
        "координаты пересчитаны из системы объекта (выдавливание)" },
    { Note::AsText, Effect::Mended, "as-text", "надписи записаны как TEXT" },
    { Note::TextDecoded, Effect::Mended, "text-decoded", "раскрыты управляющие коды надписей" },
    { Note::Joined, Effect::Mended, "joined", "линии соединены в замкнутые контуры" },
    { Note::HatchOutlines, Effect::Mended, "hatch-outlines", "записаны границы штриховок" },
    { Note::PointAdded, Effect::Mended, "point-added",
        "добавлена точка в стороне от чертежа, чтобы надписи были упорядочены при чтении" },
    { Note::AxesSwapped, Effect::Mended, "axes-swapped", "координаты переставлены" },
    { Note::Scaled, Effect::Mended, "scaled", "координаты умножены" },
    { Note::MidRenamed, Effect::Mended, "mid-renamed",
        "файл MID найден под именем в другом регистре букв" },
    { Note::MidMade, Effect::Mended, "mid-made", "файла MID не было, он создан" },
    { Note::MifHeader, Effect::Mended, "mif-header", "исправлено начало файла MIF" },
    { Note::MifDelimiter, Effect::Mended, "mif-delimiter", "разделитель столбцов заменён запятой" },
    { Note::MidRows, Effect::Mended, "mid-rows", "исправлены строки файла MID" },
    { Note::MifLines, Effect::Mended, "mif-lines", "исправлены строки объектов" },
    { Note::CollectionParts, Effect::Mended, "collection-parts", "коллекции разобраны на объекты" },
    { Note::OutlineOfShape, Effect::Mended, "outlines", "фигуры записаны контурами" },
    { Note::PointsOfMultipoint, Effect::Mended, "multipoint-points",
        "наборы точек записаны отдельными точками" },
    { Note::NameFieldFirst, Effect::Mended, "name-field", "столбец обозначений поставлен первым" },
    { Note::Transform, Effect::Mended, "transform", "координаты пересчитаны по строке Transform" },
    { Note::PaperSpace, Effect::LeftOut, "paper-space", "пространство листа" },
    { Note::Mesh, Effect::LeftOut, "mesh", "сети" },
    { Note::Surface, Effect::LeftOut, "surface", "заливки и грани" },
    { Note::NoContour, Effect::LeftOut, "no-contour", "объекты без контура и надписи" },
    { Note::LayerLeftOut, Effect::LeftOut, "layer", "слои, которые не выбраны" },
    { Note::Invisible, Effect::LeftOut, "invisible", "невидимое" },
    { Note::LabelLeftOut, Effect::LeftOut, "label", "надписи, которые не выбраны (--labels)" },
    { Note::HatchLeftOut, Effect::LeftOut, "hatch", "штриховки (границы записывает --hatch)" },
    { Note::PointsWithoutTexts, Effect::LeftOut, "points-without-texts",
        "точки в чертеже без надписей: с ними вершины остались бы без номеров" },
    { Note::EmptyLabel, Effect::LeftOut, "empty-label", "пустые надписи" },
    { Note::Incomplete, Effect::Lost, "incomplete", "записаны не полностью или с плохими числами" },
    { Note::Unreadable, Effect::Lost, "unreadable", "этот вид объектов не переводится" },
    { Note::RecursiveBlock, Effect::Lost, "recursive-block", "вставки блока в самого себя" },
    { Note::ExternalBlock, Effect::Lost, "external-block", "вставки внешних ссылок" },
    { Note::TooDeep, Effect::Lost, "too-deep", "слишком глубоко вложенные вставки" },
    { Note::TooMuch, Effect::Lost, "too-much", "не уместилось в предельный размер результата" },
    { Note::CoarseChords, Effect::Lost, "coarse-chords",
        "хорды грубее заданного: их потребовалось бы слишком много" },
    { Note::FitPoints, Effect::Mended, "fit-points",
        "сплайны без управляющих точек записаны ломаной по точкам" },
    { Note::Unencodable, Effect::Lost, "unencodable",
        "надписи с символами, которых нет в кодировке" },
    { Note::BrokenOff, Effect::Lost, "broken-off", "двоичный файл оборван или испорчен" },
    { Note::MidTooShort, Effect::Lost, "mid-too-short",
        "объекты, которым не хватило строк файла MID" },
    { Note::MidTooLong, Effect::Lost, "mid-too-long", "лишние строки файла MID" },
};

const NoteRow& rowOf(Note note)
{
    return *std::find_if(
        std::begin(rows), std::end(rows), [note](const NoteRow& row) { return row.note == note; });
}

} // namespace

Effect effectOf(Note note)
{
    return rowOf(note).effect;
}

QString noteId(Note note)
{
    return QString::fromLatin1(rowOf(note).id);
}

QString noteText(Note note)
{
    return QString::fromUtf8(rowOf(note).text);
}

KindTally& PrepareReport::tallyOf(std::string_view kind)
{
    // No drawing has so many, nor kinds with such names.
    constexpr size_t mostKinds = 1000;
    constexpr size_t mostLength = 64;
    const std::string name(kind.substr(0, mostLength));
    const auto found = m_kinds.find(name);
    if (found != m_kinds.end())
        return found->second;
    return m_kinds[m_kinds.size() < mostKinds ? name : "..."];
}

void PrepareReport::notePassedOver(const DxfPairCursor& cursor)
{
    note(Note::Comments, cursor.comments());
    note(Note::BlankLines, cursor.blankLines());
    note(Note::StrayLines, cursor.strayLines());
}

void PrepareReport::drop(std::string_view kind, Note reason, qint64 count)
{
    if (count <= 0)
        return;
    KindTally& tally = tallyOf(kind);
    (effectOf(reason) == Effect::Lost ? tally.lost : tally.leftOut) += count;
    note(reason, count);
}

void PrepareReport::tellBlock(const QString& name, const BlockChoice& choice)
{
    constexpr int mostBlocks = 10000;
    if (blocks.size() < mostBlocks || blocks.contains(name))
        blocks.insert(name, choice);
    else
        ++otherBlocks;
}

bool PrepareReport::hasLosses() const
{
    return std::any_of(m_notes.begin(), m_notes.end(),
        [](const auto& entry) { return effectOf(entry.first) == Effect::Lost; });
}

} // namespace prep
