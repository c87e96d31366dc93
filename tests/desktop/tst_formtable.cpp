#include "formtable.h"
#include "support/exampleresult.h"
#include "support/stricttest.h"

#include <QBuffer>
#include <QTest>

namespace {

constexpr GeometryInfo columns{ 0, 1, 2, 1 };

/// A form of one object; the rows of its catalogue are given.
QString form(const QString& rows)
{
    return QStringLiteral("<FormTable Name=\"Участки\"><Row><Cell/><Cell>ЗУ1</Cell>"
                          "<FormTable Name=\"Координаты\">")
        + rows + QStringLiteral("</FormTable></Row></FormTable>");
}

QString row(const QStringList& cells)
{
    QString text = QStringLiteral("<Row>");
    for (const QString& cell : cells)
        text += QStringLiteral("<Cell>%1</Cell>").arg(cell);
    return text + QStringLiteral("</Row>");
}

DefPolygon object(const QString& def, double x)
{
    return { def, { { DefPoint{ QStringLiteral("1"), x, 0 } } } };
}

QString written(const FormTable& table)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    writeForm(buffer, table);
    return QString::fromUtf8(buffer.data());
}

} // namespace

class TestFormTable : public StrictTest {
    Q_OBJECT

private slots:
    void readsExample();
    void writesWhatItRead();
    void keepsOtherCells();
    void tellsEmptyContours();
    void keepsDecimals();
    void refuses_data();
    void refuses();
    void tellsWhatIsWrong_data();
    void tellsWhatIsWrong();
    void passesOverOtherElements();
    void takesRows();
    void updatesRows();
    void tellsAreas();
};

void TestFormTable::readsExample()
{
    const QString xml =
        form(row({ QStringLiteral("1"), QStringLiteral("100.00"), QStringLiteral("200.50") })
            + row({ QStringLiteral("2"), QStringLiteral("110.50"), QStringLiteral("-3") })
            + QStringLiteral("<Row/>")
            + row({ QStringLiteral("4"), QStringLiteral("120"), QStringLiteral("230") }));
    FormTable table;
    QVERIFY(!readForm(xml, columns, table));
    QCOMPARE(table.name, QStringLiteral("Участки"));
    QCOMPARE(table.catalogueName, QStringLiteral("Координаты"));
    QVERIFY(!table.update);
    QCOMPARE(table.objects.size(), 1);
    const DefPolygon& read = table.objects.first();
    QCOMPARE(read.def, QStringLiteral("ЗУ1"));
    QCOMPARE(read.contours.size(), 2);
    QCOMPARE(read.contours.at(0).size(), 2);
    QCOMPARE(read.contours.at(0).at(1).def, QStringLiteral("2"));
    QCOMPARE(read.contours.at(0).at(1).x, 110.5);
    QCOMPARE(read.contours.at(0).at(1).y, -3.0);
    QCOMPARE(read.contours.at(1).size(), 1);
    QCOMPARE(table.catalogueColumns(), 3);
}

void TestFormTable::writesWhatItRead()
{
    // The worked example of a result, extra column, update mark and all.
    FormTable table;
    QVERIFY(!readForm(exampleResult(), columns, table));
    QVERIFY(table.update);
    QCOMPARE(table.catalogueColumns(), 4);
    QCOMPARE(written(table).trimmed(), exampleResult().trimmed());
}

void TestFormTable::keepsOtherCells()
{
    const QString xml = QStringLiteral(
        "<FormTable><Row><Cell>а</Cell><Cell>ЗУ1</Cell><Cell/><Cell>&lt;б&gt;</Cell><FormTable>"
        "<Row><Cell>1</Cell><Cell>2</Cell><Cell>3</Cell><Cell>знак</Cell></Row>"
        "<Row><Cell>1</Cell><Cell>2</Cell><Cell>3</Cell></Row>"
        "</FormTable></Row></FormTable>");
    FormTable table;
    QVERIFY(!readForm(xml, columns, table));
    const OtherCells& others = table.others.first();
    QCOMPARE(others.object,
        (QStringList{ QStringLiteral("а"), QString(), QString(), QStringLiteral("<б>") }));
    QCOMPARE(others.points.size(), 2);
    QCOMPARE(others.points.at(0).value(3), QStringLiteral("знак"));
    QVERIFY(others.points.at(1).isEmpty());

    FormTable again;
    QVERIFY(!readForm(written(table), columns, again));
    QCOMPARE(again.others.first().object, others.object);
    QCOMPARE(again.others.first().points, others.points);
}

void TestFormTable::tellsEmptyContours()
{
    const QString point = row({ QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3") });
    FormTable table;
    QVERIFY(!readForm(form(point + QStringLiteral("<Row/><Row/>") + point), columns, table));
    QCOMPARE(table.objects.first().contours.size(), 3);
    QVERIFY(table.objects.first().contours.at(1).isEmpty());
    QVERIFY(!readForm(form(QString()), columns, table));
    QVERIFY(table.objects.first().contours.isEmpty());
}

void TestFormTable::keepsDecimals()
{
    const QString xml =
        form(row({ QStringLiteral("1"), QStringLiteral("0.1234"), QStringLiteral("5.00") }));
    FormTable table;
    QVERIFY(!readForm(xml, columns, table));
    QCOMPARE(table.decimals, 4);
    QVERIFY(written(table).contains(QStringLiteral("<Cell>0.1234</Cell>")));
    QVERIFY(written(table).contains(QStringLiteral("<Cell>5.0000</Cell>")));
}

void TestFormTable::refuses_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<qint64>("line");
    QTest::newRow("nothing") << QString() << qint64(1);
    QTest::newRow("another document") << QStringLiteral("<svg/>") << qint64(1);
    QTest::newRow("cut off") << QStringLiteral("<FormTable>\n<Row>") << qint64(2);
    QTest::newRow("words behind") << QStringLiteral("<FormTable/>\n\nслово") << qint64(3);
    QTest::newRow("no number") << form(QStringLiteral("\n")
        + row({ QStringLiteral("1"), QStringLiteral("север"), QStringLiteral("2") }))
                               << qint64(2);
    QTest::newRow("too few columns")
        << form(row({ QStringLiteral("1"), QStringLiteral("2") })) << qint64(1);
}

void TestFormTable::refuses()
{
    QFETCH(QString, xml);
    FormTable table;
    const auto error = readForm(xml, columns, table);
    QVERIFY(error);
    QVERIFY(!error->text.isEmpty());
    QTEST(error->line, "line");
}

void TestFormTable::tellsWhatIsWrong_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("line");
    const QString first = QStringLiteral("\n")
        + row({ QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3") })
        + QLatin1Char('\n');
    QTest::newRow("another document")
        << QStringLiteral("\n<svg/>") << QStringLiteral("это не таблица формы") << qint64(2);
    QTest::newRow("no number") << form(
        first + row({ QStringLiteral("1"), QStringLiteral("север"), QStringLiteral("2") }))
                               << QStringLiteral("в столбце 2 каталога не координата: «север»")
                               << qint64(3);
    QTest::newRow("long text") << form(
        first + row({ QStringLiteral("1"), QStringLiteral("2"), QString(1000, QLatin1Char('s')) }))
                               << QStringLiteral("в столбце 3 каталога не координата: «%1»")
                                      .arg(QString(40, QLatin1Char('s')))
                               << qint64(3);
    QTest::newRow("too few columns")
        << form(first + row({ QStringLiteral("1"), QStringLiteral("2") }))
        << QStringLiteral("в столбце 3 каталога не координата: «»") << qint64(3);
    QTest::newRow("element in a cell of the catalogue")
        << form(first + QStringLiteral("<Row>\n<Cell>1<b>2</b></Cell></Row>"))
        << QStringLiteral("в ячейке таблицы не только текст") << qint64(4);
    QTest::newRow("element in a cell of an object")
        << QStringLiteral("<FormTable><Row>\n\n<Cell><b/></Cell></Row></FormTable>")
        << QStringLiteral("в ячейке таблицы не только текст") << qint64(3);
    QString cells;
    for (int i = 0; i < 10001; ++i)
        cells += QStringLiteral("<Cell/>");
    QTest::newRow("cells without end")
        << QStringLiteral("<FormTable>\n<Row>%1</Row></FormTable>").arg(cells)
        << QStringLiteral("в строке таблицы слишком много ячеек") << qint64(2);
}

void TestFormTable::tellsWhatIsWrong()
{
    QFETCH(QString, xml);
    FormTable table;
    const auto error = readForm(xml, columns, table);
    QVERIFY(error);
    QTEST(error->text, "text");
    QTEST(error->line, "line");
}

void TestFormTable::passesOverOtherElements()
{
    // What a later program may add to a table, a row or a catalogue, and a second catalogue.
    const QString other = QStringLiteral("<Note><Row><Cell>9</Cell></Row></Note>");
    const QString point = QStringLiteral("<Row>%1<Cell>1</Cell><Cell>2</Cell><Cell>3</Cell></Row>");
    const QString catalogue = QStringLiteral("<FormTable Name=\"%1\">%2</FormTable>");
    const QString xml =
        QStringLiteral("<FormTable>%1<Row>%1<Cell/><Cell>ЗУ1</Cell>%2%3</Row>"
                       "</FormTable>")
            .arg(other, catalogue.arg(QStringLiteral("Координаты"), other + point.arg(other)),
                catalogue.arg(QStringLiteral("Другие"), point.arg(QString())));
    FormTable table;
    const auto error = readForm(xml, columns, table);
    QVERIFY2(!error, error ? qPrintable(error->text) : "");
    QCOMPARE(table.catalogueName, QStringLiteral("Координаты"));
    QCOMPARE(table.objects.size(), 1);
    const DefPolygon& read = table.objects.first();
    QCOMPARE(read.def, QStringLiteral("ЗУ1"));
    QCOMPARE(read.contours.size(), 1);
    QCOMPARE(read.contours.first().size(), 1);
    QCOMPARE(read.contours.first().first().y, 3.0);
    QVERIFY(table.others.first().object.isEmpty());
}

void TestFormTable::takesRows()
{
    FormTable table;
    table.objects = { object(QStringLiteral("а"), 1) };
    table.others.resize(1);
    FormTable added = table;
    added.objects[0].contours[0][0].x = 2;
    table.take(added);
    QCOMPARE(table.objects.size(), 2);
    QCOMPARE(table.others.size(), 2);
    QCOMPARE(table.objects.at(0).contours.at(0).at(0).x, 1.0);
    QCOMPARE(table.objects.at(1).contours.at(0).at(0).x, 2.0);
}

void TestFormTable::updatesRows()
{
    FormTable table;
    table.objects = { object(QStringLiteral("а"), 1), object(QStringLiteral("б"), 2) };
    table.others.resize(2);
    FormTable added;
    added.update = true;
    // The second row of one designation is one more object.
    added.objects = { object(QStringLiteral("б"), 3), object(QStringLiteral("в"), 4),
        object(QStringLiteral("б"), 5) };
    added.others.resize(3);
    table.take(added);
    QStringList defs;
    QVector<double> places;
    for (const DefPolygon& row : qAsConst(table.objects)) {
        defs.append(row.def);
        places.append(row.contours.at(0).at(0).x);
    }
    QCOMPARE(defs, QStringLiteral("а б в б").split(QLatin1Char(' ')));
    QCOMPARE(places, (QVector<double>{ 1, 3, 4, 5 }));
}

void TestFormTable::tellsAreas()
{
    const auto contour = [](double lastX) {
        return QVector<DefPoint>{ { {}, 0, 0 }, { {}, 1, 0 }, { {}, 1, 1 }, { {}, lastX, 0 } };
    };
    QVERIFY(isArea({ {}, { contour(0) } }));
    QVERIFY(isArea({ {}, { contour(0.01) } }));
    QVERIFY(!isArea({ {}, { contour(0.02) } }));
    QVERIFY(!isArea({ {}, { contour(0), contour(1) } }));
    QVERIFY(!isArea({ {}, {} }));
}

QTEST_GUILESS_MAIN(TestFormTable)
#include "tst_formtable.moc"
