#include "readback.h"

#include "require.h"
#include "resultwriter.h"

#include <QXmlStreamReader>

namespace {

const QString fieldText = QStringLiteral("знак");

/// Whether XML can hold the text as it is: a carriage return comes back as a line feed.
bool isXmlText(const QString& text)
{
    const QVector<uint> characters = text.toUcs4();
    return text.isValidUtf16() && std::all_of(characters.cbegin(), characters.cend(), [](uint c) {
        return c == '\t' || c == '\n' || (c >= 0x20 && c < 0xD800) || (c >= 0xE000 && c < 0xFFFE)
            || c >= 0x10000;
    }) && !text.contains(QChar::ReplacementCharacter);
}

bool isXmlText(const DefPolygon& object)
{
    for (const QVector<DefPoint>& contour : object.contours) {
        for (const DefPoint& point : contour) {
            if (!isXmlText(point.def))
                return false;
        }
    }
    return isXmlText(object.def);
}

QString decimals(double coordinate)
{
    return QString::number(coordinate, 'f', 2);
}

/// The cells of each row of an object's catalogue, in order; no cells between two contours.
QVector<QStringList> catalogueOf(const DefPolygon& object)
{
    QVector<QStringList> rows;
    for (const QVector<DefPoint>& contour : object.contours) {
        if (&contour != &object.contours.first())
            rows.append(QStringList());
        for (const DefPoint& point : contour)
            rows.append({ point.def, decimals(point.x), decimals(point.y), fieldText });
    }
    return rows;
}

QStringList readCells(QXmlStreamReader& xml)
{
    QStringList cells;
    while (xml.readNextStartElement()) {
        require(xml.name() == QLatin1String("Cell"), "a row of a catalogue holds cells");
        cells.append(xml.readElementText());
    }
    return cells;
}

void readObject(QXmlStreamReader& xml, const DefPolygon& object)
{
    require(xml.name() == QLatin1String("Row"), "an object is a row");
    require(xml.readNextStartElement() && xml.readElementText().isEmpty(), "a cell stays empty");
    require(xml.readNextStartElement() && xml.readElementText() == object.def,
        "the designation reads back");
    require(xml.readNextStartElement() && xml.name() == QLatin1String("FormTable"),
        "the catalogue is a table");
    const QVector<QStringList> rows = catalogueOf(object);
    for (const QStringList& row : rows) {
        require(xml.readNextStartElement() && xml.name() == QLatin1String("Row"),
            "the catalogue has a row for each vertex and between contours");
        require(readCells(xml) == row, "the row reads back");
    }
    require(!xml.readNextStartElement(), "the catalogue ends with the last vertex");
    require(!xml.readNextStartElement(), "the object ends with its catalogue");
}

} // namespace

void requireReadBack(QVector<DefPolygon>& objects)
{
    ResultOptions options;
    options.tableName = QStringLiteral("Участки");
    options.catalogueTableName = QStringLiteral("Координаты");
    options.info = { 0, 1, 2, 1 };
    options.fields.insert(3, fieldText);
    const QString text = resultText(objects, options);
    const bool isLegal = std::all_of(objects.cbegin(), objects.cend(),
        [](const DefPolygon& object) { return isXmlText(object); });
    if (!isLegal)
        return;

    QXmlStreamReader xml(text);
    require(xml.readNextStartElement() && xml.name() == QLatin1String("FormTable"),
        "the result is a table");
    for (const DefPolygon& object : qAsConst(objects)) {
        require(xml.readNextStartElement(), "the result has a row for each object");
        readObject(xml, object);
    }
    require(!xml.readNextStartElement() && !xml.hasError(), "the result ends behind the objects");
}
