#include "catalogue/cataloguecolumns.h"
#include "catalogue/cataloguerows.h"
#include "support/stricttest.h"

#include <QTest>

#include <climits>

namespace {

const DefPoint vertex{ QStringLiteral("т1"), 1, 2.5 };

/// The vertex's texts of the first columns, parted by "|", "-" for a null one.
QString textsOf(const CatalogueColumns& columns, const DefPoint& point, int count)
{
    QStringList texts;
    for (int column = 0; column < count; ++column) {
        const QString text = columns.text(point, column, false);
        texts.append(text.isNull() ? QStringLiteral("-") : text);
    }
    return texts.join(QLatin1Char('|'));
}

} // namespace

Q_DECLARE_METATYPE(FieldNumValueMap)
Q_DECLARE_METATYPE(DefPolygon)

class TestCatalogueColumns : public StrictTest {
    Q_OBJECT

private slots:
    void texts_data();
    void texts();
    void emptyAndNullTexts();
    void count();
    void rows_data();
    void rows();
};

void TestCatalogueColumns::texts_data()
{
    QTest::addColumn<int>("n");
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<FieldNumValueMap>("fields");
    QTest::addColumn<QString>("expected");

    const QString a = QStringLiteral("a");
    const QString b = QStringLiteral("b");
    QTest::newRow("plain") << 0 << 1 << 2 << FieldNumValueMap()
                           << QStringLiteral("т1|1.00|2.50|-|-|-");
    QTest::newRow("y first") << 0 << 2 << 1 << FieldNumValueMap()
                             << QStringLiteral("т1|2.50|1.00|-|-|-");
    QTest::newRow("a field") << 0 << 1 << 2 << FieldNumValueMap{ { 4, a } }
                             << QStringLiteral("т1|1.00|2.50|-|a|-");
    QTest::newRow("fields under columns")
        << 0 << 1 << 2 << FieldNumValueMap{ { 0, a }, { 1, a }, { 2, a }, { 3, b } }
        << QStringLiteral("т1|1.00|2.50|b|-|-");
    QTest::newRow("all in one") << 1 << 1 << 1 << FieldNumValueMap()
                                << QStringLiteral("-|т1|-|-|-|-");
    QTest::newRow("coordinates in one")
        << 0 << 1 << 1 << FieldNumValueMap() << QStringLiteral("т1|1.00|-|-|-|-");
    QTest::newRow("negative") << -1 << 1 << -7 << FieldNumValueMap{ { -1, a }, { 0, b } }
                              << QStringLiteral("b|1.00|-|-|-|-");
}

void TestCatalogueColumns::texts()
{
    QFETCH(int, n);
    QFETCH(int, x);
    QFETCH(int, y);
    QFETCH(FieldNumValueMap, fields);
    CatalogueColumns columns;
    columns.setNxyColNum(n, x, y);
    columns.setFieldNumValueMap(fields);
    QTEST(textsOf(columns, vertex, 6), "expected");
    QVector<int> filled;
    for (int column = 0; column < 6; ++column) {
        const bool isNull = columns.text(vertex, column, true).isNull();
        QCOMPARE(columns.content(column) == CellContent::Nothing, isNull);
        QCOMPARE(columns.content(column) == CellContent::Designation, column == n);
        QCOMPARE(columns.isDesignation(column), column == n);
        if (!isNull)
            filled.append(column);
    }
    QCOMPARE(columns.filledColumns(), filled);
}

// A column can be filled, with a null text.
void TestCatalogueColumns::emptyAndNullTexts()
{
    CatalogueColumns columns;
    columns.setFieldNumValueMap({ { 3, QString() }, { 4, QStringLiteral("") } });
    QCOMPARE(textsOf(columns, DefPoint{ QString(), 0, 0 }, 6), QStringLiteral("-|0.00|0.00|-||-"));
    QCOMPARE(columns.content(3), CellContent::Field);
    QVERIFY(columns.field(3).isNull());
    QCOMPARE(columns.content(4), CellContent::Field);
    QVERIFY(!columns.field(4).isNull());
    QCOMPARE(columns.content(5), CellContent::Nothing);
    QVERIFY(columns.field(5).isNull());
    QCOMPARE(columns.filledColumns(), (QVector<int>{ 0, 1, 2, 3, 4 }));
}

void TestCatalogueColumns::count()
{
    CatalogueColumns columns;
    QCOMPARE(columns.count(), 3);
    columns.setNxyColNum(3, 5, 4);
    QCOMPARE(columns.count(), 6);
    columns.setFieldNumValueMap({ { 1, QString() }, { 7, QStringLiteral("a") } });
    QCOMPARE(columns.count(), 8);
    columns.setNxyColNum(-1, 0, 1);
    columns.setFieldNumValueMap({});
    QCOMPARE(columns.count(), 8);
    columns.setNxyColNum(0, INT_MAX, 1);
    QCOMPARE(columns.count(), INT_MAX);
    QCOMPARE(columns.content(INT_MAX), CellContent::X);
    QCOMPARE(columns.filledColumns(), (QVector<int>{ 0, 1 }));
}

void TestCatalogueColumns::rows_data()
{
    QTest::addColumn<DefPolygon>("polygon");
    QTest::addColumn<QString>("expected");

    const auto polygon = [](const QVector<int>& sizes) {
        DefPolygon result;
        for (const int size : sizes)
            result.contours.append(QVector<DefPoint>(size, vertex));
        return result;
    };
    QTest::newRow("no contour") << polygon({}) << QString();
    QTest::newRow("an empty contour") << polygon({ 0 }) << QString();
    QTest::newRow("one contour") << polygon({ 2 }) << QStringLiteral("0.0 0.1 ");
    QTest::newRow("two contours") << polygon({ 2, 1 }) << QStringLiteral("0.0 0.1 --- 1.0 ");
    QTest::newRow("empty ones between")
        << polygon({ 1, 0, 0, 1 }) << QStringLiteral("0.0 --- --- --- 3.0 ");
    QTest::newRow("an empty one at the end") << polygon({ 1, 0 }) << QStringLiteral("0.0 --- ");
}

void TestCatalogueColumns::rows()
{
    QFETCH(DefPolygon, polygon);
    QString rows;
    visitCatalogueRows(polygon, [&rows](const RowInfo& row) {
        const bool isSeparator = row.contourIndex == -1 && row.pointIndex == -1;
        rows += isSeparator ? QStringLiteral("--- ")
                            : QStringLiteral("%1.%2 ").arg(row.contourIndex).arg(row.pointIndex);
    });
    QTEST(rows, "expected");
}

QTEST_APPLESS_MAIN(TestCatalogueColumns)
#include "tst_cataloguecolumns.moc"
