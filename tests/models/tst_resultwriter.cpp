#include "resultwriter.h"

#include "models/defpolygontablemodel.h"
#include "objects.h"
#include "support/exampleresult.h"
#include "support/stricttest.h"

#include <QBuffer>
#include <QTest>
#include <QXmlStreamWriter>

namespace {

const QString tableName = QStringLiteral("Участки");
const QString catalogueName = QStringLiteral("Координаты");
const QString def = QStringLiteral("ЗУ1");
const QString sign = QStringLiteral("знак");

QByteArray writtenToDevice(const QVector<DefPolygon>& objects, const ResultOptions& options)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    ResultWriter writer(buffer, options);
    for (const DefPolygon& object : objects)
        writer.write(object);
    writer.finish();
    return buffer.data();
}

void writeLiteralRow(QXmlStreamWriter& writer, const QAbstractItemModel& model, int row)
{
    bool isEmpty = true;
    for (int column = 0; column < model.columnCount(); ++column)
        isEmpty = isEmpty && model.data(model.index(row, column), Qt::DisplayRole).isNull();
    if (isEmpty) {
        writer.writeEmptyElement(QStringLiteral("Row"));
        return;
    }
    writer.writeStartElement(QStringLiteral("Row"));
    for (int column = 0; column < model.columnCount(); ++column) {
        const QModelIndex index = model.index(row, column);
        if (model.data(index, Qt::DisplayRole).isNull()) {
            writer.writeEmptyElement(QStringLiteral("Cell"));
            continue;
        }
        writer.writeStartElement(QStringLiteral("Cell"));
        writer.writeCharacters(model.data(index, Qt::EditRole).toString());
        writer.writeEndElement();
    }
    writer.writeEndElement();
}

/// The same result, written step by step through the catalogue model's data().
QString writtenLiterally(QVector<DefPolygon> objects, const ResultOptions& options)
{
    QString text;
    QXmlStreamWriter writer(&text);
    writer.setAutoFormatting(true);
    DefPolygonTableModel model;
    model.setNxyColNum(options.info.nColNum, options.info.xColNum, options.info.yColNum);
    model.setFieldNumValueMap(options.fields);

    writer.writeStartElement(QStringLiteral("FormTable"));
    if (!options.tableName.isEmpty())
        writer.writeAttribute(QStringLiteral("Name"), options.tableName);
    if (options.update)
        writer.writeAttribute(QStringLiteral("Update"), QStringLiteral("1"));
    for (DefPolygon& object : objects) {
        model.setPolygon(&object);
        writer.writeStartElement(QStringLiteral("Row"));
        for (int i = 0; i < options.info.defColNum; ++i)
            writer.writeEmptyElement(QStringLiteral("Cell"));
        writer.writeStartElement(QStringLiteral("Cell"));
        writer.writeCharacters(object.def);
        writer.writeEndElement();
        writer.writeStartElement(QStringLiteral("FormTable"));
        if (!options.catalogueTableName.isEmpty())
            writer.writeAttribute(QStringLiteral("Name"), options.catalogueTableName);
        for (int row = 0; row < model.rowCount(); ++row)
            writeLiteralRow(writer, model, row);
        writer.writeEndElement();
        writer.writeEndElement();
    }
    writer.writeEndElement();
    return text;
}

DefPoint point(const char* name, double x, double y)
{
    return DefPoint{ QString::fromUtf8(name), x, y };
}

/// The text of the only object's row, from its first cell on.
QString rowOf(const DefPolygon& object, const GeometryInfo& info, const QMap<int, QString>& fields)
{
    const QVector<DefPolygon> objects = { object };
    ResultOptions options;
    options.info = info;
    options.fields = fields;
    const QString text = resultText(objects, options);
    const QString head = QStringLiteral("\n<FormTable>\n    <Row>\n");
    const QString tail = QStringLiteral("\n    </Row>\n</FormTable>");
    if (!text.startsWith(head) || !text.endsWith(tail))
        return QStringLiteral("not an object in a table: ") + text;
    return text.mid(head.size(), text.size() - head.size() - tail.size())
        .replace(QStringLiteral("\n"), QString())
        .replace(QStringLiteral("    "), QString());
}

} // namespace

Q_DECLARE_METATYPE(DefPolygon)
Q_DECLARE_METATYPE(GeometryInfo)
using Fields = QMap<int, QString>;
Q_DECLARE_METATYPE(Fields)

class TestResultWriter : public StrictTest {
    Q_OBJECT

private slots:
    void workedExample();
    void outerTable_data();
    void outerTable();
    void objectRow_data();
    void objectRow();
    void nestedTable_data();
    void nestedTable();
    void severalObjects();
    void textsAreEscaped();
    void nestingIsIndented();
    void toADevice();
    void objectsStayAsTheyAre();
    void followsTheLiteralWriting();
    void everyCharacter();
    void hostileTexts();
    void longTexts();
};

void TestResultWriter::workedExample()
{
    QVector<DefPolygon> objects = { makeObject(def,
        { { point("1", 100, 200), point("2", 110.5, 200), point("3", 110.5, 215.25) },
            { point("4", 120, 230), point("5", 125.75, 230) } }) };
    ResultOptions options;
    options.tableName = tableName;
    options.catalogueTableName = catalogueName;
    options.update = true;
    options.info = { 0, 1, 2, 1 };
    options.fields = { { 3, sign } };
    QCOMPARE(resultText(objects, options), exampleResult());
}

void TestResultWriter::outerTable_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("update");
    QTest::addColumn<QString>("text");

    QTest::newRow("bare") << QString() << false << QStringLiteral("\n<FormTable/>");
    QTest::newRow("empty name") << QStringLiteral("") << false << QStringLiteral("\n<FormTable/>");
    QTest::newRow("name") << tableName << false
                          << QStringLiteral("\n<FormTable Name=\"Участки\"/>");
    QTest::newRow("update") << QString() << true << QStringLiteral("\n<FormTable Update=\"1\"/>");
    QTest::newRow("both") << tableName << true
                          << QStringLiteral("\n<FormTable Name=\"Участки\" Update=\"1\"/>");
}

void TestResultWriter::outerTable()
{
    QFETCH(QString, name);
    QFETCH(bool, update);
    QFETCH(QString, text);
    QVector<DefPolygon> objects;
    ResultOptions options;
    options.tableName = name;
    options.catalogueTableName = catalogueName;
    options.update = update;
    QCOMPARE(resultText(objects, options), text);
}

void TestResultWriter::objectRow_data()
{
    QTest::addColumn<DefPolygon>("object");
    QTest::addColumn<GeometryInfo>("info");
    QTest::addColumn<Fields>("fields");
    QTest::addColumn<QString>("text"); // without its line feeds and indents

    const auto row = [](const char* name, const DefPolygon& object, const GeometryInfo& info,
                         const Fields& fields, const char* text) {
        QTest::newRow(name) << object << info << fields << QString::fromUtf8(text);
    };
    const GeometryInfo plain{ 0, 1, 2, 0 };
    const DefPolygon bare = makeObject(def, {});
    const DefPolygon one = makeObject(def, { { point("т1", 1, 2) } });

    row("no contours", bare, plain, {}, "<Cell>ЗУ1</Cell><FormTable/>");
    row("an empty contour", makeObject(def, { {} }), plain, {}, "<Cell>ЗУ1</Cell><FormTable/>");
    row("empty designation", makeObject(QStringLiteral(""), {}), plain, {},
        "<Cell></Cell><FormTable/>");
    row("null designation", makeObject(QString(), {}), plain, {}, "<Cell></Cell><FormTable/>");
    row("designation in column 0", bare, { 0, 1, 2, 0 }, {}, "<Cell>ЗУ1</Cell><FormTable/>");
    row("designation in a negative column", bare, { 0, 1, 2, -3 }, {},
        "<Cell>ЗУ1</Cell><FormTable/>");
    row("designation in column 3", bare, { 0, 1, 2, 3 }, {},
        "<Cell/><Cell/><Cell/><Cell>ЗУ1</Cell><FormTable/>");
    row("cells in column order", one, { 2, 1, 0, 0 }, {},
        "<Cell>ЗУ1</Cell><FormTable><Row><Cell>2.00</Cell><Cell>1.00</Cell><Cell>т1</Cell></Row>"
        "</FormTable>");
    row("y before x", one, { 0, 2, 1, 0 }, { { 3, sign } },
        "<Cell>ЗУ1</Cell><FormTable><Row><Cell>т1</Cell><Cell>2.00</Cell><Cell>1.00</Cell>"
        "<Cell>знак</Cell></Row></FormTable>");
    row("a far field", one, plain, { { 6, sign } },
        "<Cell>ЗУ1</Cell><FormTable><Row><Cell>т1</Cell><Cell>1.00</Cell><Cell>2.00</Cell>"
        "<Cell/><Cell/><Cell/><Cell>знак</Cell></Row></FormTable>");
    row("a field under a column", one, plain, { { 1, sign } },
        "<Cell>ЗУ1</Cell><FormTable><Row><Cell>т1</Cell><Cell>1.00</Cell><Cell>2.00</Cell></Row>"
        "</FormTable>");
    row("null point designation", makeObject(def, { { DefPoint{ QString(), 1, 2 } } }), plain, {},
        "<Cell>ЗУ1</Cell><FormTable><Row><Cell/><Cell>1.00</Cell><Cell>2.00</Cell></Row>"
        "</FormTable>");
    row("empty point designation", makeObject(def, { { DefPoint{ QStringLiteral(""), 1, 2 } } }),
        plain, {},
        "<Cell>ЗУ1</Cell><FormTable><Row><Cell></Cell><Cell>1.00</Cell><Cell>2.00</Cell></Row>"
        "</FormTable>");
    row("empty and null fields", one, plain, { { 3, QString() }, { 4, QStringLiteral("") } },
        "<Cell>ЗУ1</Cell><FormTable><Row><Cell>т1</Cell><Cell>1.00</Cell><Cell>2.00</Cell><Cell/>"
        "<Cell></Cell></Row></FormTable>");
    row("two separators", makeObject(def, { { point("1", 0, 0) }, {}, { point("2", 1, 1) } }),
        { 0, -1, -1, 0 }, {},
        "<Cell>ЗУ1</Cell><FormTable><Row><Cell>1</Cell><Cell/><Cell/></Row><Row/><Row/>"
        "<Row><Cell>2</Cell><Cell/><Cell/></Row></FormTable>");
    row("separators only", makeObject(def, { {}, {} }), plain, { { 3, sign } },
        "<Cell>ЗУ1</Cell><FormTable><Row/></FormTable>");
    row("no column met", one, { -1, -1, -1, 0 }, {},
        "<Cell>ЗУ1</Cell><FormTable><Row/></FormTable>");
    row("coinciding columns", one, { 1, 1, 1, 0 }, {},
        "<Cell>ЗУ1</Cell><FormTable><Row><Cell/><Cell>т1</Cell><Cell/></Row></FormTable>");
    row("coordinates without groups", makeObject(def, { { point("1", 1234567.5, -7654321.25) } }),
        plain, {},
        "<Cell>ЗУ1</Cell><FormTable><Row><Cell>1</Cell><Cell>1234567.50</Cell>"
        "<Cell>-7654321.25</Cell></Row></FormTable>");
}

void TestResultWriter::objectRow()
{
    QFETCH(DefPolygon, object);
    QFETCH(GeometryInfo, info);
    QFETCH(Fields, fields);
    QFETCH(QString, text);
    QCOMPARE(rowOf(object, info, fields), text);
}

void TestResultWriter::nestedTable_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("tag");

    QTest::newRow("null") << QString() << QStringLiteral("<FormTable/>");
    QTest::newRow("empty") << QStringLiteral("") << QStringLiteral("<FormTable/>");
    QTest::newRow("named") << catalogueName << QStringLiteral("<FormTable Name=\"Координаты\"/>");
    QTest::newRow("a space") << QStringLiteral(" ") << QStringLiteral("<FormTable Name=\" \"/>");
}

void TestResultWriter::nestedTable()
{
    QFETCH(QString, name);
    QFETCH(QString, tag);
    QVector<DefPolygon> objects = { makeObject(def, {}) };
    ResultOptions options;
    options.catalogueTableName = name;
    QCOMPARE(resultText(objects, options),
        QStringLiteral("\n<FormTable>\n    <Row>\n        <Cell>ЗУ1</Cell>\n        %1\n"
                       "    </Row>\n</FormTable>")
            .arg(tag));
}

void TestResultWriter::severalObjects()
{
    QVector<DefPolygon> objects = { makeObject(QStringLiteral("2"), {}),
        makeObject(QStringLiteral("1"), {}), makeObject(QStringLiteral("2"), {}) };
    const char* const expected = R"(
<FormTable>
    <Row>
        <Cell>2</Cell>
        <FormTable/>
    </Row>
    <Row>
        <Cell>1</Cell>
        <FormTable/>
    </Row>
    <Row>
        <Cell>2</Cell>
        <FormTable/>
    </Row>
</FormTable>)";
    QCOMPARE(resultText(objects, ResultOptions()), QString::fromUtf8(expected));
}

void TestResultWriter::textsAreEscaped()
{
    const QString raw = QStringLiteral("&<>\"'");
    QVector<DefPolygon> objects = { makeObject(raw, { { DefPoint{ raw, 0, 0 } } }) };
    ResultOptions options;
    options.tableName = raw;
    options.catalogueTableName = raw;
    options.info = { 0, -1, -1, 0 };
    options.fields = { { 1, raw } };
    const char* const expected = R"(
<FormTable Name="&amp;&lt;&gt;&quot;'">
    <Row>
        <Cell>&amp;&lt;&gt;&quot;'</Cell>
        <FormTable Name="&amp;&lt;&gt;&quot;'">
            <Row>
                <Cell>&amp;&lt;&gt;&quot;'</Cell>
                <Cell>&amp;&lt;&gt;&quot;'</Cell>
                <Cell/>
            </Row>
        </FormTable>
    </Row>
</FormTable>)";
    QCOMPARE(resultText(objects, options), QString::fromUtf8(expected));
}

void TestResultWriter::nestingIsIndented()
{
    QVector<DefPolygon> objects = { makeObject(def, { { point("1", 0, 0) }, {} }) };
    ResultOptions options;
    options.info = { 0, 1, 2, 1 };
    const char* const expected = R"(
<FormTable>
    <Row>
        <Cell/>
        <Cell>ЗУ1</Cell>
        <FormTable>
            <Row>
                <Cell>1</Cell>
                <Cell>0.00</Cell>
                <Cell>0.00</Cell>
            </Row>
            <Row/>
        </FormTable>
    </Row>
</FormTable>)";
    QCOMPARE(resultText(objects, options), QString::fromUtf8(expected));
}

void TestResultWriter::toADevice()
{
    RandomObjects random(5);
    QVector<DefPolygon> objects = random.objects(50);
    ResultOptions options;
    options.tableName = tableName;
    options.fields = { { 3, sign } };

    QCOMPARE(writtenToDevice(objects, options), writtenLiterally(objects, options).toUtf8());
}

void TestResultWriter::objectsStayAsTheyAre()
{
    QVector<DefPolygon> objects = { makeObject(def, { { point("1", 0.125, 2) } }) };
    resultText(objects, ResultOptions());
    QCOMPARE(objects.size(), 1);
    QCOMPARE(objects.first().def, def);
    QCOMPARE(objects.first().contours.size(), 1);
    QCOMPARE(objects.first().contours.first().size(), 1);
    QCOMPARE(objects.first().contours.first().first().def, QStringLiteral("1"));
    QCOMPARE(objects.first().contours.first().first().x, 0.125);
}

void TestResultWriter::followsTheLiteralWriting()
{
    RandomObjects random(7);
    for (int round = 0; round < 1000; ++round) {
        QVector<DefPolygon> objects = random.objects(5);
        ResultOptions options;
        options.tableName = random.def();
        options.catalogueTableName = random.def();
        options.update = random.below(2) == 1;
        options.info = { random.below(7) - 2, random.below(7) - 2, random.below(7) - 2,
            random.below(5) - 2 };
        for (int i = random.below(4); i > 0; --i)
            options.fields.insert(random.below(9) - 1, random.def());
        QCOMPARE(resultText(objects, options), writtenLiterally(objects, options));
    }
}

/// Each unit of UTF-16 in an element and in an attribute, alone and before another one.
void TestResultWriter::everyCharacter()
{
    QVector<DefPolygon> objects(1);
    ResultOptions options;
    for (int unit = 0; unit <= 0xFFFF; ++unit) {
        const QChar character(unit);
        objects.first().def = QString(character) + QLatin1Char('x') + character;
        options.tableName = objects.first().def;
        const QString expected = writtenLiterally(objects, options);
        QCOMPARE(resultText(objects, options), expected);
        QCOMPARE(writtenToDevice(objects, options), expected.toUtf8());
    }
}

void TestResultWriter::hostileTexts()
{
    const QString alphabet = QStringLiteral("aя<>&\"'\t\n\r\v\f]-!?% \u0001\u0085\u2028") + QChar(0)
        + QChar(0xD800) + QChar(0xDBFF) + QChar(0xDC00) + QChar(0xDFFF) + QChar(0xFFFE)
        + QChar(0xFFFF) + QChar(0xFEFF) + QChar(0x7FF) + QChar(0x800) + QChar(0x7F) + QChar(0x80);
    Random random(3);
    for (int round = 0; round < 3000; ++round) {
        const auto text = [&] { return random.text(alphabet, 6); };
        const QVector<DefPolygon> objects{ makeObject(text(), { { DefPoint{ text(), 1, 2 } } }) };
        ResultOptions options;
        options.tableName = text();
        options.catalogueTableName = text();
        options.fields = { { 3, text() } };
        const QString expected = writtenLiterally(objects, options);
        QCOMPARE(resultText(objects, options), expected);
        QCOMPARE(writtenToDevice(objects, options), expected.toUtf8());
    }
}

/// Texts longer than any block, and every place of a border between blocks.
void TestResultWriter::longTexts()
{
    for (const int length : { 1 << 16, 43690, 43691, 1 << 20 }) {
        const QString text = QStringLiteral("&я<").repeated(length);
        const QVector<DefPolygon> objects{ makeObject(text, { { DefPoint{ text, 1, 2 } } }),
            makeObject(def, { { point("1", 3, 4) } }) };
        const QString expected = writtenLiterally(objects, ResultOptions());
        QVERIFY(resultText(objects, ResultOptions()) == expected);
        QVERIFY(writtenToDevice(objects, ResultOptions()) == expected.toUtf8());
    }
    RandomObjects random(11);
    const QVector<DefPolygon> objects = random.objects(8000);
    QVERIFY(writtenToDevice(objects, ResultOptions())
        == writtenLiterally(objects, ResultOptions()).toUtf8());
}

QTEST_APPLESS_MAIN(TestResultWriter)
#include "tst_resultwriter.moc"
