#include "models/defmaptablemodel.h"

#include "geometry/designation.h"
#include "modeledits.h"
#include "modelsignals.h"
#include "objects.h"
#include "support/stricttest.h"

#include <QAbstractItemModelTester>
#include <QBrush>
#include <QTest>

namespace {

const QBrush lightRed(QColor(255, 220, 220));

QVector<DefPolygon> objectsNamed(const QStringList& defs)
{
    QVector<DefPolygon> result;
    for (const QString& def : defs)
        result.append(DefPolygon{ def, {} });
    return result;
}

/// The duplicate rule, read literally.
bool isDuplicate(const QVector<DefPolygon>& objects, int row)
{
    const QString& def = objects.at(row).def;
    if (def.isEmpty())
        return false;
    int count = 0;
    for (const DefPolygon& object : objects)
        count += QString::compare(object.def, def, Qt::CaseInsensitive) == 0 ? 1 : 0;
    return count >= 2;
}

} // namespace

class TestDefMapTableModel : public StrictTest {
    Q_OBJECT

private slots:
    void withoutCollection();
    void showsDesignations();
    void otherRolesAreInvalid();
    void headers();
    void duplicates_data();
    void duplicates();
    void duplicateRowOutOfRange();
    void flags();
    void editTellsTheCellThenTheTable();
    void editIsRefused_data();
    void editIsRefused();
    void editOfAnyTextIsAccepted_data() { addAcceptedDefs(); }
    void editOfAnyTextIsAccepted();
    void editOfStaleIndexIsRefused();
    void resets();
    void duplicatesOfOtherObjects();
    void duplicatesFollowTheLiteralScan();
    void testerThroughLife();
};

void TestDefMapTableModel::withoutCollection()
{
    const DefMapTableModel model(nullptr);
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(model.columnCount(), 1);
    QVERIFY(!model.index(0, 0).isValid());
    QVERIFY(!model.data(QModelIndex()).isValid());
    QVERIFY(!model.isDuplicateDef(0));
    QCOMPARE(model.flags(QModelIndex()), Qt::NoItemFlags);
}

void TestDefMapTableModel::showsDesignations()
{
    QVector<DefPolygon> objects = objectsNamed({ QStringLiteral("ЗУ1"), QString() });
    DefMapTableModel model;
    model.setMap(&objects);
    QCOMPARE(model.rowCount(), 2);
    QCOMPARE(model.columnCount(), 1);
    const QModelIndex first = model.index(0, 0);
    QCOMPARE(model.rowCount(first), 0);
    QCOMPARE(model.columnCount(first), 1);
    for (const int role : { Qt::DisplayRole, Qt::EditRole }) {
        QCOMPARE(model.data(first, role), QVariant(QStringLiteral("ЗУ1")));
        const QVariant unnamed = model.data(model.index(1, 0), role);
        QVERIFY(unnamed.isValid());
        QCOMPARE(unnamed.userType(), int(QMetaType::QString));
        QVERIFY(unnamed.isNull());
    }
}

void TestDefMapTableModel::otherRolesAreInvalid()
{
    QVector<DefPolygon> objects = objectsNamed({ QStringLiteral("1"), QStringLiteral("1") });
    DefMapTableModel model;
    model.setMap(&objects);
    for (int role = 0; role <= Qt::UserRole; ++role) {
        if (role == Qt::DisplayRole || role == Qt::EditRole || role == Qt::BackgroundRole)
            continue;
        QVERIFY2(!model.data(model.index(0, 0), role).isValid(), QByteArray::number(role));
    }
}

void TestDefMapTableModel::headers()
{
    QVector<DefPolygon> objects = objectsNamed({ QString(), QString(), QString() });
    DefMapTableModel model;
    model.setMap(&objects);
    QCOMPARE(model.headerData(0, Qt::Horizontal), QVariant(QStringLiteral("N")));
    for (int row = 0; row < 3; ++row)
        QCOMPARE(model.headerData(row, Qt::Vertical), QVariant(row + 1));
    for (int role = 1; role <= Qt::UserRole; ++role) {
        QVERIFY(!model.headerData(0, Qt::Horizontal, role).isValid());
        QVERIFY(!model.headerData(0, Qt::Vertical, role).isValid());
    }
}

void TestDefMapTableModel::duplicates_data()
{
    QTest::addColumn<QStringList>("defs");
    QTest::addColumn<QByteArray>("marks");

    const QString a = QStringLiteral("A1");
    QTest::newRow("none") << QStringList() << QByteArray();
    QTest::newRow("one") << QStringList{ a } << QByteArray("-");
    QTest::newRow("case is ignored")
        << QStringList{ a, QStringLiteral("a1"), QStringLiteral("B") } << QByteArray("dd-");
    QTest::newRow("Russian letters")
        << QStringList{ QStringLiteral("зу1"), QStringLiteral("ЗУ1") } << QByteArray("dd");
    QTest::newRow("apart") << QStringList{ a, QStringLiteral("B"), a, QStringLiteral("b"), a }
                           << QByteArray("ddddd");
    QTest::newRow("empty ones are not marked")
        << QStringList{ QString(), QStringLiteral(""), QString() } << QByteArray("---");
    QTest::newRow("spaces count") << QStringList{ a, QStringLiteral("A1 ") } << QByteArray("--");
    QTest::newRow("numbers are texts")
        << QStringList{ QStringLiteral("01"), QStringLiteral("1") } << QByteArray("--");
}

void TestDefMapTableModel::duplicates()
{
    QFETCH(QStringList, defs);
    QFETCH(QByteArray, marks);
    QVector<DefPolygon> objects = objectsNamed(defs);
    DefMapTableModel model;
    model.setMap(&objects);
    for (int row = 0; row < marks.size(); ++row) {
        const bool marked = marks.at(row) == 'd';
        QCOMPARE(model.isDuplicateDef(row), marked);
        QCOMPARE(model.data(model.index(row, 0), Qt::BackgroundRole),
            marked ? QVariant(lightRed) : QVariant());
    }
}

void TestDefMapTableModel::duplicateRowOutOfRange()
{
    QVector<DefPolygon> objects = objectsNamed({ QStringLiteral("1"), QStringLiteral("1") });
    DefMapTableModel model;
    model.setMap(&objects);
    QVERIFY(!model.isDuplicateDef(-1));
    QVERIFY(model.isDuplicateDef(1));
    QVERIFY(!model.isDuplicateDef(2));
}

void TestDefMapTableModel::flags()
{
    QVector<DefPolygon> objects = objectsNamed({ QStringLiteral("1") });
    DefMapTableModel model;
    model.setMap(&objects);
    QCOMPARE(model.flags(model.index(0, 0)),
        Qt::ItemIsSelectable | Qt::ItemIsEditable | Qt::ItemIsEnabled);
    QCOMPARE(model.flags(QModelIndex()), Qt::NoItemFlags);
}

void TestDefMapTableModel::editTellsTheCellThenTheTable()
{
    QVector<DefPolygon> objects =
        objectsNamed({ QStringLiteral("A1"), QStringLiteral("a1"), QStringLiteral("B") });
    objects[2].contours = { { DefPoint{ QStringLiteral("7"), 1, 2 } } };
    DefMapTableModel model;
    model.setMap(&objects);
    QVERIFY(!model.isDuplicateDef(2));

    const ModelSignals told(model);
    const QModelIndex edited = model.index(2, 0);
    QVERIFY(model.setData(edited, QStringLiteral("A1")));
    QCOMPARE(told.count(), 2);
    QVERIFY(told.isChange(0, edited, edited, { Qt::DisplayRole, Qt::EditRole }));
    QVERIFY(told.isChange(1, model.index(0, 0), model.index(2, 0), { Qt::BackgroundRole }));
    QCOMPARE(objects.at(2).def, QStringLiteral("A1"));
    QCOMPARE(objects.at(2).contours.first().first().def, QStringLiteral("7"));
    for (int row = 0; row < 3; ++row)
        QVERIFY(model.isDuplicateDef(row));
}

void TestDefMapTableModel::editIsRefused_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("role");

    const QVariant other = QStringLiteral("2");
    QTest::newRow("same text") << 0 << QVariant(QStringLiteral("1")) << int(Qt::EditRole);
    QTest::newRow("same text from a number") << 0 << QVariant(1) << int(Qt::EditRole);
    QTest::newRow("empty for null") << 1 << QVariant(QStringLiteral("")) << int(Qt::EditRole);
    QTest::newRow("display role") << 0 << other << int(Qt::DisplayRole);
    QTest::newRow("background role") << 0 << other << int(Qt::BackgroundRole);
    QTest::newRow("invalid index") << -1 << other << int(Qt::EditRole);
}

void TestDefMapTableModel::editIsRefused()
{
    QFETCH(int, row);
    QFETCH(QVariant, value);
    QFETCH(int, role);
    QVector<DefPolygon> objects = objectsNamed({ QStringLiteral("1"), QString() });
    DefMapTableModel model;
    model.setMap(&objects);
    const ModelSignals told(model);
    QVERIFY(!model.setData(model.index(row, 0), value, role));
    QCOMPARE(told.count(), 0);
    QCOMPARE(objects.at(0).def, QStringLiteral("1"));
    QVERIFY(objects.at(1).def.isNull());
}

void TestDefMapTableModel::editOfAnyTextIsAccepted()
{
    QVector<DefPolygon> objects = objectsNamed({ QStringLiteral("a") });
    DefMapTableModel model;
    model.setMap(&objects);
    compareAcceptedDef(model, objects.first().def);
}

void TestDefMapTableModel::editOfStaleIndexIsRefused()
{
    QVector<DefPolygon> objects = objectsNamed({ QStringLiteral("1"), QStringLiteral("2") });
    QVector<DefPolygon> fewer = objectsNamed({ QStringLiteral("1") });
    QVector<DefPolygon> none;
    DefMapTableModel model;
    model.setMap(&objects);
    const QModelIndex stale = model.index(1, 0);
    for (QVector<DefPolygon>* map : { &fewer, &none, static_cast<QVector<DefPolygon>*>(nullptr) }) {
        model.setMap(map);
        compareStaleCell(model, stale);
    }
}

void TestDefMapTableModel::resets()
{
    QVector<DefPolygon> objects = objectsNamed({ QStringLiteral("1") });
    QVector<DefPolygon> none;
    DefMapTableModel model;
    const ModelSignals told(model);
    int resets = 0;
    for (QVector<DefPolygon>* map :
        { &objects, &objects, &none, static_cast<QVector<DefPolygon>*>(nullptr) }) {
        model.setMap(map);
        ++resets;
        QCOMPARE(told.aboutToReset.count(), resets);
        QCOMPARE(told.reset.count(), resets);
        QCOMPARE(told.count(), 2 * resets);
        QCOMPARE(model.rowCount(), map ? map->size() : 0);
    }
}

void TestDefMapTableModel::duplicatesOfOtherObjects()
{
    QVector<DefPolygon> same = objectsNamed({ QStringLiteral("a"), QStringLiteral("a") });
    QVector<DefPolygon> different = objectsNamed({ QStringLiteral("a"), QStringLiteral("b") });
    DefMapTableModel model;
    model.setMap(&same);
    QVERIFY(model.isDuplicateDef(0) && model.isDuplicateDef(1));
    model.setMap(&different);
    QVERIFY(!model.isDuplicateDef(0) && !model.isDuplicateDef(1));
}

void TestDefMapTableModel::duplicatesFollowTheLiteralScan()
{
    RandomObjects random(20);
    int marked = 0;
    for (int round = 0; round < 500; ++round) {
        QVector<DefPolygon> objects = random.objects(12);
        DefMapTableModel model;
        model.setMap(&objects);
        for (int edit = 0; edit < 5; ++edit) {
            for (int row = 0; row < objects.size(); ++row) {
                QCOMPARE(model.isDuplicateDef(row), isDuplicate(objects, row));
                marked += model.isDuplicateDef(row) ? 1 : 0;
            }
            if (!objects.isEmpty())
                model.setData(model.index(random.below(objects.size()), 0), random.def());
        }
    }
    QVERIFY(marked > 1000);
}

void TestDefMapTableModel::testerThroughLife()
{
    DefMapTableModel model;
    const QAbstractItemModelTester tester(
        &model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QVector<DefPolygon> objects =
        objectsNamed({ QStringLiteral("P10"), QStringLiteral("p2"), QStringLiteral("P") });
    model.setMap(&objects);
    QVERIFY(model.setData(model.index(0, 0), QStringLiteral("P2")));

    model.setMap(nullptr);
    sortObjects(objects);
    model.setMap(&objects);
    QCOMPARE(model.data(model.index(0, 0)), QVariant(QStringLiteral("P")));
    QVERIFY(model.setData(model.index(2, 0), QString()));

    model.setMap(nullptr);
    objects = objectsNamed({ QStringLiteral("1") });
    model.setMap(&objects);
    QVERIFY(model.setData(model.index(0, 0), QStringLiteral("2")));

    model.setMap(nullptr);
    objects.clear();
    model.setMap(&objects);
    QCOMPARE(model.rowCount(), 0);
    model.setMap(nullptr);
}

QTEST_APPLESS_MAIN(TestDefMapTableModel)
#include "tst_defmaptablemodel.moc"
