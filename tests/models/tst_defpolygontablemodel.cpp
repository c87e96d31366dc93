#include "models/defpolygontablemodel.h"

#include "geometry/designation.h"
#include "modeledits.h"
#include "modelsignals.h"
#include "objects.h"
#include "support/stricttest.h"

#include <QAbstractItemModelTester>
#include <QBrush>
#include <QLocale>
#include <QTest>

#include <array>
#include <cmath>
#include <limits>

namespace {

using Fields = QMap<int, QString>;

const QBrush lightRed(QColor(255, 220, 220));
const QBrush lightGrey(QColor(240, 240, 240));
const QString def = QStringLiteral("7");

/// Contours of the given sizes; the vertices are numbered from 1 and stand at (number; -number).
DefPolygon objectOfSizes(const QVector<int>& sizes)
{
    DefPolygon object;
    int number = 0;
    for (const int size : sizes) {
        QVector<DefPoint> contour;
        for (int i = 0; i < size; ++i) {
            ++number;
            contour.append(DefPoint{ QString::number(number), double(number), double(-number) });
        }
        object.contours.append(contour);
    }
    return object;
}

bool isSeparator(const DefPolygonTableModel& model, int row)
{
    return model.data(model.index(row, 0), Qt::BackgroundRole) == QVariant(lightGrey);
}

/// The vertex of each row, null on a separator row.
QVector<const DefPoint*> rowsOf(const DefPolygon& object)
{
    QVector<const DefPoint*> rows;
    for (int contour = 0; contour < object.contours.size(); ++contour) {
        if (contour > 0)
            rows.append(nullptr);
        for (const DefPoint& point : object.contours.at(contour))
            rows.append(&point);
    }
    return rows;
}

/// The conflict rule, read literally.
bool isConflicting(const QVector<const DefPoint*>& rows, int row)
{
    const DefPoint* p = rows.at(row);
    if (!p || p->def.isEmpty())
        return false;
    for (int other = 0; other < rows.size(); ++other) {
        const DefPoint* q = rows.at(other);
        if (other == row || !q || QString::compare(p->def, q->def, Qt::CaseInsensitive) != 0)
            continue;
        if (!(std::abs(p->x - q->x) <= 0.01) || !(std::abs(p->y - q->y) <= 0.01))
            return true;
    }
    return false;
}

} // namespace

Q_DECLARE_METATYPE(DefPolygon)
Q_DECLARE_METATYPE(Fields)

class TestDefPolygonTableModel : public StrictTest {
    Q_OBJECT

private slots:
    void fresh();
    void columnsAreNeverLost();
    void settersTellNothing();
    void resets();
    void rows_data();
    void rows();
    void cells_data();
    void cells();
    void nullAndEmptyDesignationsDiffer();
    void otherRolesAreInvalid();
    void headers();
    void coordinatesInTheUserLocale();
    void coordinatesInTheCLocale_data();
    void coordinatesInTheCLocale();
    void coordinatesAreWrittenAsTheLocaleDoes();
    void conflicts_data();
    void conflicts();
    void conflictRowOutOfRange();
    void conflictsOfAnotherObject();
    void conflictsFollowTheLiteralScan();
    void flags();
    void editTellsTheCellThenTheTable();
    void editIsRefused_data();
    void editIsRefused();
    void editOfAnyTextIsAccepted_data() { addAcceptedDefs(); }
    void editOfAnyTextIsAccepted();
    void editOfStaleIndexIsRefused();
    void testerThroughLife();
};

void TestDefPolygonTableModel::fresh()
{
    const DefPolygonTableModel model(nullptr);
    QCOMPARE(DefPolygonTableModel::coordPrecision(), 0.01);
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(model.columnCount(), 3);
    for (int section = 0; section < 3; ++section)
        QCOMPARE(model.headerData(section, Qt::Horizontal), QVariant(section + 1));
    QVERIFY(!model.data(QModelIndex()).isValid());
    QVERIFY(!model.isConflictingPoint(0));

    DefPolygon object = objectOfSizes({ 1 });
    DefPolygonTableModel shown;
    shown.setPolygon(&object);
    QCOMPARE(shown.data(shown.index(0, 0)), QVariant(QStringLiteral("1")));
    QCOMPARE(shown.data(shown.index(0, 1), Qt::EditRole), QVariant(QStringLiteral("1.00")));
    QCOMPARE(shown.data(shown.index(0, 2), Qt::EditRole), QVariant(QStringLiteral("-1.00")));
}

void TestDefPolygonTableModel::columnsAreNeverLost()
{
    DefPolygonTableModel model;
    model.setNxyColNum(3, 4, 5);
    QCOMPARE(model.columnCount(), 6);
    model.setNxyColNum(0, 1, 2);
    QCOMPARE(model.columnCount(), 6);
    model.setFieldNumValueMap({ { 7, def } });
    QCOMPARE(model.columnCount(), 8);
    model.setFieldNumValueMap({ { 1, def } });
    QCOMPARE(model.columnCount(), 8);
    model.setFieldNumValueMap({});
    QCOMPARE(model.columnCount(), 8);
    model.setPolygon(nullptr);
    QCOMPARE(model.columnCount(), 8);
    model.setNxyColNum(-1, -2, -3);
    QCOMPARE(model.columnCount(), 8);
    model.setNxyColNum(std::numeric_limits<int>::max(), 1, 2);
    QCOMPARE(model.columnCount(), std::numeric_limits<int>::max());

    for (const auto& columns : { std::array<int, 3>{ 5, 0, 1 }, { 0, 5, 1 }, { 0, 1, 5 } }) {
        DefPolygonTableModel other;
        other.setNxyColNum(columns[0], columns[1], columns[2]);
        QCOMPARE(other.columnCount(), 6);
    }
    DefPolygonTableModel narrow;
    narrow.setNxyColNum(-1, -1, -1);
    narrow.setFieldNumValueMap({ { 0, def } });
    QCOMPARE(narrow.columnCount(), 3);
}

void TestDefPolygonTableModel::settersTellNothing()
{
    DefPolygon object = objectOfSizes({ 2 });
    DefPolygonTableModel model;
    model.setPolygon(&object);
    const ModelSignals told(model);
    model.setNxyColNum(3, 4, 5);
    model.setFieldNumValueMap({ { 9, def } });
    QCOMPARE(told.count(), 0);
}

void TestDefPolygonTableModel::resets()
{
    DefPolygon object = objectOfSizes({ 3, 2 });
    DefPolygon empty;
    DefPolygonTableModel model;
    const ModelSignals told(model);
    int resets = 0;
    const QVector<QPair<DefPolygon*, int>> steps = { { &object, 6 }, { &object, 6 }, { &empty, 0 },
        { &object, 6 }, { nullptr, 0 } };
    for (const auto& step : steps) {
        model.setPolygon(step.first);
        ++resets;
        QCOMPARE(model.rowCount(), step.second);
        QCOMPARE(told.aboutToReset.count(), resets);
        QCOMPARE(told.reset.count(), resets);
        QCOMPARE(told.count(), 2 * resets);
    }
}

void TestDefPolygonTableModel::rows_data()
{
    QTest::addColumn<QVector<int>>("sizes");
    QTest::addColumn<QByteArray>("table");

    QTest::newRow("no contour") << QVector<int>{} << QByteArray("");
    QTest::newRow("an empty contour") << QVector<int>{ 0 } << QByteArray("");
    QTest::newRow("one") << QVector<int>{ 3 } << QByteArray("vvv");
    QTest::newRow("two") << QVector<int>{ 3, 2 } << QByteArray("vvv-vv");
    QTest::newRow("three") << QVector<int>{ 1, 1, 1 } << QByteArray("v-v-v");
    QTest::newRow("empty in between") << QVector<int>{ 2, 0, 1 } << QByteArray("vv--v");
    QTest::newRow("empty first") << QVector<int>{ 0, 1 } << QByteArray("-v");
    QTest::newRow("empty last") << QVector<int>{ 1, 0 } << QByteArray("v-");
    QTest::newRow("all empty") << QVector<int>{ 0, 0, 0 } << QByteArray("--");
}

void TestDefPolygonTableModel::rows()
{
    QFETCH(QVector<int>, sizes);
    QFETCH(QByteArray, table);
    DefPolygon object = objectOfSizes(sizes);
    DefPolygonTableModel model;
    model.setNxyColNum(0, 2, 1);
    model.setFieldNumValueMap({ { 3, def } });
    model.setPolygon(&object);
    QCOMPARE(model.rowCount(), table.size());
    QCOMPARE(model.columnCount(), 4);

    int number = 0;
    for (int row = 0; row < table.size(); ++row) {
        QCOMPARE(model.rowCount(model.index(row, 0)), 0);
        QCOMPARE(model.columnCount(model.index(row, 0)), 4);
        if (table.at(row) == 'v') {
            const QString text = QString::number(++number);
            QCOMPARE(model.data(model.index(row, 0), Qt::EditRole), QVariant(text));
            QCOMPARE(model.data(model.index(row, 2), Qt::EditRole),
                QVariant(QString(text + QStringLiteral(".00"))));
            QVERIFY(!isSeparator(model, row));
            continue;
        }
        for (int column = 0; column < 4; ++column) {
            const QModelIndex index = model.index(row, column);
            QCOMPARE(model.flags(index), Qt::NoItemFlags);
            for (int role = 0; role <= Qt::UserRole; ++role)
                QCOMPARE(model.data(index, role),
                    role == Qt::BackgroundRole ? QVariant(lightGrey) : QVariant());
        }
    }
}

void TestDefPolygonTableModel::cells_data()
{
    QTest::addColumn<int>("n");
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<Fields>("fields");
    QTest::addColumn<QStringList>("texts"); // "-" stands for no value

    const auto row = [](const char* name, int n, int x, int y, const Fields& fields,
                         const char* texts) {
        QTest::newRow(name) << n << x << y << fields
                            << QString::fromUtf8(texts).split(QLatin1Char('|'));
    };
    const QString sign = QStringLiteral("знак");
    row("plain", 0, 1, 2, {}, "т5|12.50|-0.25");
    row("y before x", 0, 2, 1, {}, "т5|-0.25|12.50");
    row("gaps", 1, 3, 5, {}, "-|т5|-|12.50|-|-0.25");
    row("fields", 0, 1, 2, { { 3, sign }, { 5, QStringLiteral("x") } }, "т5|12.50|-0.25|знак|-|x");
    row("a field under a column", 0, 1, 2, { { 0, sign }, { 1, sign }, { 2, sign } },
        "т5|12.50|-0.25");
    row("a field in a gap", 0, 2, 3, { { 1, sign } }, "т5|знак|12.50|-0.25");
    row("an empty field", 0, 1, 2, { { 3, QStringLiteral("") } }, "т5|12.50|-0.25|");
    row("x under n", 1, 1, 2, {}, "-|т5|-0.25");
    row("y under x", 0, 1, 1, {}, "т5|12.50|-");
    row("all in one", 2, 2, 2, {}, "-|-|т5");
    row("no designation", -1, 1, 2, {}, "-|12.50|-0.25");
    row("no x", 0, -1, 2, {}, "т5|-|-0.25");
    row("no y", 0, 1, -7, {}, "т5|12.50|-");
    row("nothing", -1, -1, -1, {}, "-|-|-");
    row("only a field", -1, -1, -1, { { 1, sign } }, "-|знак|-");
    row("a negative field", 0, 1, 2, { { -1, sign } }, "т5|12.50|-0.25");
}

void TestDefPolygonTableModel::cells()
{
    QFETCH(int, n);
    QFETCH(int, x);
    QFETCH(int, y);
    QFETCH(Fields, fields);
    QFETCH(QStringList, texts);
    const DefPoint point{ QStringLiteral("т5"), 12.5, -0.25 };
    DefPolygon object = makeObject(def, { { point }, { point } });
    DefPolygonTableModel model;
    model.setNxyColNum(n, x, y);
    model.setFieldNumValueMap(fields);
    model.setPolygon(&object);

    QCOMPARE(model.columnCount(), texts.size());
    for (const int row : { 0, 2 }) {
        for (int column = 0; column < texts.size(); ++column) {
            const QModelIndex index = model.index(row, column);
            const QString text = texts.at(column);
            const QVariant expected = text == QStringLiteral("-") ? QVariant() : QVariant(text);
            QCOMPARE(model.data(index, Qt::EditRole), expected);
            QCOMPARE(model.data(index, Qt::DisplayRole).isValid(), expected.isValid());
        }
    }
}

void TestDefPolygonTableModel::nullAndEmptyDesignationsDiffer()
{
    DefPolygon object =
        makeObject(def, { { DefPoint{ QString(), 1, 2 }, DefPoint{ QStringLiteral(""), 1, 2 } } });
    DefPolygonTableModel model;
    model.setPolygon(&object);
    for (const int role : { Qt::DisplayRole, Qt::EditRole }) {
        const QVariant null = model.data(model.index(0, 0), role);
        QCOMPARE(null.userType(), int(QMetaType::QString));
        QVERIFY(null.isNull());
        const QVariant empty = model.data(model.index(1, 0), role);
        QCOMPARE(empty.userType(), int(QMetaType::QString));
        QVERIFY(!empty.isNull());
    }
}

void TestDefPolygonTableModel::otherRolesAreInvalid()
{
    DefPolygon object = objectOfSizes({ 1 });
    DefPolygonTableModel model;
    model.setFieldNumValueMap({ { 3, def } });
    model.setPolygon(&object);
    for (int column = 0; column < 4; ++column) {
        for (int role = 0; role <= Qt::UserRole; ++role) {
            if (role != Qt::DisplayRole && role != Qt::EditRole)
                QVERIFY(!model.data(model.index(0, column), role).isValid());
        }
    }
}

void TestDefPolygonTableModel::headers()
{
    DefPolygon object = objectOfSizes({ 1, 1 });
    DefPolygonTableModel model;
    model.setNxyColNum(0, 4, 3);
    model.setPolygon(&object);
    for (int section = 0; section < 5; ++section)
        QCOMPARE(model.headerData(section, Qt::Horizontal), QVariant(section + 1));
    for (int section = 0; section < 3; ++section)
        QCOMPARE(model.headerData(section, Qt::Vertical), QVariant(section + 1));
    for (int role = 1; role <= Qt::UserRole; ++role) {
        QVERIFY(!model.headerData(0, Qt::Horizontal, role).isValid());
        QVERIFY(!model.headerData(0, Qt::Vertical, role).isValid());
    }
}

void TestDefPolygonTableModel::coordinatesInTheUserLocale()
{
    DefPolygon object = makeObject(def, { { DefPoint{ def, 1234567.5, -0.25 } } });
    DefPolygonTableModel model;
    model.setPolygon(&object);
    const bool russian = QLocale().language() == QLocale::Russian;
    QCOMPARE(russian, qgetenv("LC_ALL").startsWith("ru"));
    const QString x =
        russian ? QStringLiteral("1\u00A0234\u00A0567,50") : QStringLiteral("1,234,567.50");
    const QString y = russian ? QStringLiteral("-0,25") : QStringLiteral("-0.25");
    QCOMPARE(model.data(model.index(0, 1)), QVariant(x));
    QCOMPARE(model.data(model.index(0, 2)), QVariant(y));
    QCOMPARE(model.formatCoord(1234567.5, true), x);
    QCOMPARE(model.formatCoord(1234567.5, false), QStringLiteral("1234567.50"));
}

void TestDefPolygonTableModel::coordinatesInTheCLocale_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");

    QTest::newRow("decimals are filled") << 1234.5 << QStringLiteral("1234.50");
    QTest::newRow("zero") << 0.0 << QStringLiteral("0.00");
    QTest::newRow("whole") << 6000000.0 << QStringLiteral("6000000.00");
    QTest::newRow("rounded up") << 0.126 << QStringLiteral("0.13");
    QTest::newRow("rounded down") << 0.124 << QStringLiteral("0.12");
    QTest::newRow("an eighth") << 0.125 << QStringLiteral("0.13");
    QTest::newRow("three eighths") << 100.375 << QStringLiteral("100.38");
    QTest::newRow("five eighths, negative") << -2.625 << QStringLiteral("-2.63");
    QTest::newRow("carried over") << 9.999 << QStringLiteral("10.00");
    QTest::newRow("no exponent") << 1e20 << QStringLiteral("100000000000000000000.00");
    QTest::newRow("not a number") << qQNaN() << QStringLiteral("nan");
    QTest::newRow("infinite") << qInf() << QStringLiteral("inf");
    QTest::newRow("negative infinite") << -qInf() << QStringLiteral("-inf");
}

void TestDefPolygonTableModel::coordinatesInTheCLocale()
{
    QFETCH(double, value);
    QFETCH(QString, text);
    QCOMPARE(DefPolygonTableModel().formatCoord(value, false), text);
}

void TestDefPolygonTableModel::coordinatesAreWrittenAsTheLocaleDoes()
{
    const DefPolygonTableModel model;
    const QLocale c(QLocale::C, QLocale::AnyCountry);
    Random random(11);
    for (int i = 0; i < 100000; ++i) {
        const double eighths = (random.below(2000000000) - 1e9) / 8;
        const double thousandths = (random.below(2000000000) - 1e9) / 1000;
        const double scaled = thousandths * std::pow(10, random.below(30) - 15);
        for (const double value : { eighths, thousandths, scaled })
            QCOMPARE(model.formatCoord(value, false), c.toString(value, 'f', 2));
    }
}

void TestDefPolygonTableModel::conflicts_data()
{
    QTest::addColumn<DefPolygon>("object");
    QTest::addColumn<QByteArray>("marks"); // c conflicting, v vertex, - separator

    const auto point = [](const QString& name, double x, double y) {
        return DefPoint{ name, x, y };
    };
    const QString a = QStringLiteral("ё");
    const QString upper = QStringLiteral("Ё");
    const QString other = QStringLiteral("8");
    const double nan = qQNaN();

    QTest::newRow("0.02 apart in x")
        << makeObject(def, { { point(def, 0, 0), point(def, 0.02, 0) } }) << QByteArray("cc");
    QTest::newRow("0.02 apart in y")
        << makeObject(def, { { point(def, 0, 0), point(def, 0, -0.02) } }) << QByteArray("cc");
    QTest::newRow("0.01 apart in both")
        << makeObject(def, { { point(def, 0, 0), point(def, 0.01, 0.01) } }) << QByteArray("vv");
    QTest::newRow("case is ignored")
        << makeObject(def, { { point(a, 0, 0), point(upper, 1, 0) } }) << QByteArray("cc");
    QTest::newRow("same place, other names")
        << makeObject(def, { { point(def, 0, 0), point(other, 0, 0) } }) << QByteArray("vv");
    QTest::newRow("without names")
        << makeObject(def, { { point(QString(), 0, 0), point(QStringLiteral(""), 5, 5) } })
        << QByteArray("vv");
    QTest::newRow("across contours")
        << makeObject(def, { { point(def, 0, 0) }, { point(other, 1, 1) }, { point(def, 2, 2) } })
        << QByteArray("c-v-c");
    QTest::newRow("only the bearers of the name") << makeObject(
        def, { { point(other, 0, 0), point(def, 1, 1) }, { point(def, 3, 3), point(other, 0, 0) } })
                                                  << QByteArray("vc-cv");
    QTest::newRow("a closing vertex")
        << makeObject(def, { { point(def, 0, 0), point(other, 1, 0), point(def, 0, 0) } })
        << QByteArray("vvv");
    QTest::newRow("a middle one within tolerance of both ends")
        << makeObject(def, { { point(def, 0, 0), point(def, 0.009, 0), point(def, 0.018, 0) } })
        << QByteArray("cvc");
    QTest::newRow("not a number") << makeObject(def, { { point(def, nan, 0), point(def, nan, 0) } })
                                  << QByteArray("cc");
    QTest::newRow("infinite") << makeObject(
        def, { { point(def, qInf(), 0), point(def, qInf(), 0) } })
                              << QByteArray("cc");
    QTest::newRow("a single one that is not a number")
        << makeObject(def, { { point(def, nan, 0), point(other, 0, 0) } }) << QByteArray("vv");
}

void TestDefPolygonTableModel::conflicts()
{
    QFETCH(DefPolygon, object);
    QFETCH(QByteArray, marks);
    DefPolygonTableModel model;
    model.setFieldNumValueMap({ { 4, def } });
    model.setPolygon(&object);
    QCOMPARE(model.rowCount(), marks.size());
    for (int row = 0; row < marks.size(); ++row) {
        QCOMPARE(model.isConflictingPoint(row), marks.at(row) == 'c');
        QVariant background;
        if (marks.at(row) != 'v')
            background = marks.at(row) == 'c' ? lightRed : lightGrey;
        for (int column = 0; column < model.columnCount(); ++column)
            QCOMPARE(model.data(model.index(row, column), Qt::BackgroundRole), background);
    }
}

void TestDefPolygonTableModel::conflictRowOutOfRange()
{
    DefPolygon object = makeObject(def, { { DefPoint{ def, 0, 0 }, DefPoint{ def, 1, 1 } } });
    DefPolygonTableModel model;
    model.setPolygon(&object);
    QVERIFY(model.isConflictingPoint(1));
    QVERIFY(!model.isConflictingPoint(-1));
    QVERIFY(!model.isConflictingPoint(2));
    model.setPolygon(nullptr);
    QVERIFY(!model.isConflictingPoint(0));
}

void TestDefPolygonTableModel::conflictsOfAnotherObject()
{
    const QString name = QStringLiteral("1");
    DefPolygon conflicting{ QString(), { { { name, 0, 0 }, { name, 5, 0 } } } };
    DefPolygon sound{ QString(), { { { name, 0, 0 }, { QStringLiteral("2"), 5, 0 } } } };
    DefPolygonTableModel model;
    model.setPolygon(&conflicting);
    QVERIFY(model.isConflictingPoint(0) && model.isConflictingPoint(1));
    model.setPolygon(&sound);
    QVERIFY(!model.isConflictingPoint(0) && !model.isConflictingPoint(1));
}

void TestDefPolygonTableModel::conflictsFollowTheLiteralScan()
{
    RandomObjects random(41);
    int marked = 0;
    for (int round = 0; round < 2000; ++round) {
        DefPolygon object = random.object();
        DefPolygonTableModel model;
        model.setPolygon(&object);
        for (int edit = 0; edit < 4; ++edit) {
            const QVector<const DefPoint*> rows = rowsOf(object);
            QCOMPARE(model.rowCount(), rows.size());
            for (int row = 0; row < rows.size(); ++row) {
                QCOMPARE(model.isConflictingPoint(row), isConflicting(rows, row));
                marked += model.isConflictingPoint(row) ? 1 : 0;
            }
            if (!rows.isEmpty())
                model.setData(model.index(random.below(rows.size()), 0), random.def());
        }
    }
    QVERIFY(marked > 1000);
}

void TestDefPolygonTableModel::flags()
{
    DefPolygon object = objectOfSizes({ 1, 1 });
    DefPolygonTableModel model;
    model.setNxyColNum(1, 0, 2);
    model.setFieldNumValueMap({ { 3, def } });
    model.setPolygon(&object);
    const Qt::ItemFlags readOnly = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    for (int column = 0; column < 4; ++column) {
        QCOMPARE(model.flags(model.index(0, column)),
            column == 1 ? readOnly | Qt::ItemIsEditable : readOnly);
        QCOMPARE(model.flags(model.index(1, column)), Qt::NoItemFlags);
    }
    QCOMPARE(model.flags(QModelIndex()), Qt::NoItemFlags);
}

void TestDefPolygonTableModel::editTellsTheCellThenTheTable()
{
    DefPolygon object = makeObject(def,
        { { DefPoint{ QStringLiteral("1"), 0, 0 }, DefPoint{ QStringLiteral("2"), 5, 5 } },
            { DefPoint{ QStringLiteral("1"), 0, 0 } } });
    DefPolygonTableModel model;
    model.setNxyColNum(1, 2, 4);
    model.setPolygon(&object);
    QVERIFY(!model.isConflictingPoint(1));

    const ModelSignals told(model);
    const QModelIndex edited = model.index(3, 1);
    QVERIFY(model.setData(edited, QStringLiteral("2")));
    QCOMPARE(told.count(), 2);
    QVERIFY(told.isChange(0, edited, edited, { Qt::DisplayRole, Qt::EditRole }));
    QVERIFY(told.isChange(1, model.index(0, 0), model.index(3, 4), { Qt::BackgroundRole }));
    // Only this occurrence of the point is renamed.
    QCOMPARE(object.contours.at(0).at(0).def, QStringLiteral("1"));
    QCOMPARE(object.contours.at(1).at(0).def, QStringLiteral("2"));
    QVERIFY(model.isConflictingPoint(1));
    QVERIFY(model.isConflictingPoint(3));
    QVERIFY(!model.isConflictingPoint(0));
}

void TestDefPolygonTableModel::editIsRefused_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("column");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("role");

    const QVariant other = QStringLiteral("2");
    const int edit = Qt::EditRole;
    QTest::newRow("same text") << 0 << 0 << QVariant(def) << edit;
    QTest::newRow("same text from a number") << 0 << 0 << QVariant(7) << edit;
    QTest::newRow("empty for null") << 2 << 0 << QVariant(QStringLiteral("")) << edit;
    QTest::newRow("x") << 0 << 1 << other << edit;
    QTest::newRow("y") << 0 << 2 << other << edit;
    QTest::newRow("field") << 0 << 3 << other << edit;
    QTest::newRow("separator") << 1 << 0 << other << edit;
    QTest::newRow("display role") << 0 << 0 << other << int(Qt::DisplayRole);
    QTest::newRow("invalid index") << -1 << -1 << other << edit;
}

void TestDefPolygonTableModel::editIsRefused()
{
    QFETCH(int, row);
    QFETCH(int, column);
    QFETCH(QVariant, value);
    QFETCH(int, role);
    DefPolygon object =
        makeObject(def, { { DefPoint{ def, 0, 0 } }, { DefPoint{ QString(), 0, 0 } } });
    DefPolygonTableModel model;
    model.setFieldNumValueMap({ { 3, def } });
    model.setPolygon(&object);
    const ModelSignals told(model);
    QVERIFY(!model.setData(model.index(row, column), value, role));
    QCOMPARE(told.count(), 0);
    QCOMPARE(object.contours.at(0).at(0).def, def);
    QVERIFY(object.contours.at(1).at(0).def.isNull());
}

void TestDefPolygonTableModel::editOfAnyTextIsAccepted()
{
    DefPolygon object = makeObject(def, { { DefPoint{ QStringLiteral("a"), 0, 0 } } });
    DefPolygonTableModel model;
    model.setPolygon(&object);
    compareAcceptedDef(model, object.contours.first().first().def);
}

void TestDefPolygonTableModel::editOfStaleIndexIsRefused()
{
    DefPolygon object = objectOfSizes({ 2 });
    DefPolygon fewer = objectOfSizes({ 1 });
    DefPolygon empty;
    DefPolygonTableModel model;
    model.setPolygon(&object);
    const QModelIndex stale = model.index(1, 0);
    for (DefPolygon* polygon : { &fewer, &empty, static_cast<DefPolygon*>(nullptr) }) {
        model.setPolygon(polygon);
        compareStaleCell(model, stale);
    }
}

void TestDefPolygonTableModel::testerThroughLife()
{
    DefPolygonTableModel model;
    const QAbstractItemModelTester tester(
        &model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QVector<DefPolygon> objects = { objectOfSizes({ 3, 2 }), objectOfSizes({ 1 }), DefPolygon() };
    objects[0].def = QStringLiteral("2");
    objects[1].def = QStringLiteral("1");
    model.setNxyColNum(0, 2, 1);
    model.setPolygon(&objects.first());
    QVERIFY(model.setData(model.index(0, 0), QStringLiteral("2")));
    model.setPolygon(&objects[1]);
    model.setFieldNumValueMap({ { 5, def } });
    model.setPolygon(&objects[1]);
    QCOMPARE(model.columnCount(), 6);

    model.setPolygon(nullptr);
    sortObjects(objects);
    model.setPolygon(&objects.first());
    QCOMPARE(model.rowCount(), 0);
    model.setPolygon(&objects[1]);
    QVERIFY(model.setData(model.index(0, 0), QString()));

    model.setPolygon(nullptr);
    objects = { objectOfSizes({ 0, 2 }) };
    model.setPolygon(&objects.first());
    QVERIFY(model.setData(model.index(2, 0), QStringLiteral("1")));
    QCOMPARE(model.rowCount(), 3);

    model.setPolygon(nullptr);
    objects.clear();
    QCOMPARE(model.rowCount(), 0);
}

QTEST_APPLESS_MAIN(TestDefPolygonTableModel)
#include "tst_defpolygontablemodel.moc"
