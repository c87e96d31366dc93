#include "models/defpolygontablemodel.h"
#include "support/stricttest.h"

#include <QProcess>
#include <QTest>

#include <cstdio>

// The number of decimals is decided once in a process. Each row therefore runs this program again:
// with arguments it sets them as precisions, one after the other, and prints after each a
// coordinate in the C locale.
static const char shownCoordinate[] = "1234.5678";

class TestCoordDecimals : public StrictTest {
    Q_OBJECT

private slots:
    void decimals_data();
    void decimals();
};

void TestCoordDecimals::decimals_data()
{
    QTest::addColumn<QStringList>("precisions");
    QTest::addColumn<QByteArray>("texts");

    const auto row = [](const char* name, const QStringList& precisions, const QByteArray& texts) {
        QTest::newRow(name) << precisions << texts;
    };
    const auto list = [](const char* text) {
        return QString::fromLatin1(text).split(QLatin1Char(' '));
    };
    row("hundredths", list("0.01"), "1234.57\n");
    row("a half needs one decimal", list("0.5"), "1234.6\n");
    row("an eighth needs one decimal", list("0.125"), "1234.6\n");
    row("a sixteenth needs two decimals", list("0.0625"), "1234.57\n");
    row("thousandths", list("0.001"), "1234.568\n");
    row("whole units", list("1"), "1235\n");
    row("coarser than units", list("25"), "1235\n");
    row("infinite", list("inf"), "1235\n");
    row("decided once", list("0.001 0.1 1"), "1234.568\n1234.568\n1234.568\n");
    row("no decimals decide nothing", list("1 5 0.1 0.001"), "1235\n1235\n1234.6\n1234.6\n");
    row("ignored values keep the default", list("0 -1 nan"), "1234.57\n1234.57\n1234.57\n");
    row("ignored values keep the last", list("0.5 -0.001"), "1234.6\n1234.6\n");
}

void TestCoordDecimals::decimals()
{
    QFETCH(QStringList, precisions);
    QFETCH(QByteArray, texts);

    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), precisions);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(process.readAllStandardOutput(), texts);
}

static int printCoordinates(const QStringList& precisions)
{
    const DefPolygonTableModel model;
    const double coordinate = QByteArray(shownCoordinate).toDouble();
    for (const QString& precision : precisions) {
        DefPolygonTableModel::setCoordPrecision(precision.toDouble());
        std::puts(qPrintable(model.formatCoord(coordinate, false)));
    }
    return 0;
}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList precisions = QCoreApplication::arguments().mid(1);
    bool isNumber = false;
    if (!precisions.isEmpty())
        precisions.first().toDouble(&isNumber);
    if (isNumber)
        return printCoordinates(precisions);

    TestCoordDecimals test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_coorddecimals.moc"
