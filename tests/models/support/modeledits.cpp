#include "modeledits.h"

#include "modelsignals.h"

#include <QTest>

void addAcceptedDefs()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("stored");

    QTest::newRow("other case") << QVariant(QStringLiteral("A")) << QStringLiteral("A");
    QTest::newRow("empty") << QVariant(QStringLiteral("")) << QStringLiteral("");
    QTest::newRow("no text at all") << QVariant() << QString();
    QTest::newRow("spaces") << QVariant(QStringLiteral("  ")) << QStringLiteral("  ");
    QTest::newRow("number") << QVariant(17) << QStringLiteral("17");
}

void compareAcceptedDef(QAbstractItemModel& model, const QString& def)
{
    QFETCH(QVariant, value);
    QFETCH(QString, stored);
    QCOMPARE(def, QStringLiteral("a"));
    const ModelSignals told(model);
    QVERIFY(model.setData(model.index(0, 0), value));
    QCOMPARE(told.changed.count(), 2);
    QCOMPARE(def, stored);
    QCOMPARE(def.isNull(), stored.isNull());
}

void compareStaleCell(QAbstractItemModel& model, const QModelIndex& stale)
{
    const ModelSignals told(model);
    QVERIFY(!model.setData(stale, QStringLiteral("3")));
    QVERIFY(!model.data(stale).isValid());
    QCOMPARE(told.count(), 0);
}
