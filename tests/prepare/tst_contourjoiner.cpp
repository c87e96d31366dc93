// Boundaries drawn as separate lines.

#include "prepared.h"

#include <QTest>

using prep::PrepareOptions;

namespace {

QString joined(const QByteArray& entities, double tolerance)
{
    PrepareOptions options;
    options.join = tolerance;
    return outline(prepared(drawingOf(entities.constData()), options).bytes)
        .join(QStringLiteral("; "));
}

/// A LINE in the notation of pairs().
QByteArray line(const char* from, const char* to, const char* layer = "a")
{
    const QList<QByteArray> start = QByteArray(from).split(' ');
    const QList<QByteArray> end = QByteArray(to).split(' ');
    return QByteArray("0 LINE, 8 ") + layer + ", 10 " + start[0] + ", 20 " + start[1] + ", 11 "
        + end[0] + ", 21 " + end[1];
}

QByteArray lines(const QList<QByteArray>& entities)
{
    return entities.join(", ");
}

} // namespace

class TestContourJoiner : public QObject {
    Q_OBJECT

private slots:
    void loops_data();
    void loops();
    void report();
    void longRow();
};

void TestContourJoiner::loops_data()
{
    QTest::addColumn<QByteArray>("entities");
    QTest::addColumn<double>("tolerance");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const QList<QByteArray>& entities, double tolerance,
                         const char* expected) {
        QTest::newRow(name) << lines(entities) << tolerance << QString::fromLatin1(expected);
    };
    row("triangle", { line("0.0 0", "5 0"), line("5 0", "5 5"), line("5 5", "0 0") }, 0,
        "closed 0.0 0, 5 0, 5 5");
    row("in any order and direction",
        { line("0 0", "5 0"), line("0 0", "5 5"), line("5 0", "5 5.0") }, 0,
        "closed 0 0, 5 0, 5 5");
    row("within the tolerance",
        { line("0 0", "5 0"), line("5.01 0", "5 5"), line("5 5.005", "0 -0.01") }, 0.02,
        "closed 0 0, 5.01 0, 5 5.005");
    row("beyond the tolerance", { line("0 0", "5 0"), line("5.03 0", "5 5"), line("5 5", "0 0") },
        0.02, "line 0 0, 5 0; line 5.03 0, 5 5; line 5 5, 0 0");
    row("across the borders of cells",
        { line("0 0", "0.9999 0"), line("1.0001 0", "1 1"), line("1 1", "0 0") }, 1e-3,
        "closed 0 0, 1.0001 0, 1 1");
    row("not closed", { line("0 0", "5 0"), line("5 0", "5 5") }, 0,
        "line 0 0, 5 0; line 5 0, 5 5");
    row("three at one place",
        { line("0 0", "5 0"), line("5 0", "5 5"), line("5 5", "0 0"), line("0 0", "-5 0") }, 0,
        "line 0 0, 5 0; line 5 0, 5 5; line 5 5, 0 0; line 0 0, -5 0");
    row("another layer", { line("0 0", "5 0"), line("5 0", "5 5", "b"), line("5 5", "0 0") }, 0,
        "line 0 0, 5 0; line 5 0, 5 5; line 5 5, 0 0");
    row("a layer of lines that meet others",
        { line("0 0", "5 0"), line("5 0", "5 5"), line("5 5", "0 0"), line("0 0", "9 9", "b") }, 0,
        "closed 0 0, 5 0, 5 5; line 0 0, 9 9");
    row("there and back", { line("0 0", "5 0"), line("5 0", "0 0") }, 0,
        "line 0 0, 5 0; line 5 0, 0 0");
    row("order of all contours",
        { line("9 9", "8 8"), line("0 0", "5 0"), line("7 7", "6 6"), line("5 0", "5 5"),
            line("5 5", "0 0") },
        0, "line 9 9, 8 8; closed 0 0, 5 0, 5 5; line 7 7, 6 6");
    row("open polyline that ends where it begins",
        { "0 LWPOLYLINE, 8 a, 90 4, 70 0, 10 0, 20 0, 10 5, 20 0, 10 5, 20 5, 10 0, 20 0" }, 0,
        "closed 0 0, 5 0, 5 5");
    row("polyline and arc",
        { "0 LWPOLYLINE, 8 a, 90 3, 70 0, 10 10, 20 0, 10 0, 20 0, 10 0, 20 10",
            "0 ARC, 8 a, 10 0, 20 0, 40 10, 50 0, 51 90" },
        1e-9, "closed 10 0, 0 0, 0 10, 7.0710678119 7.0710678119");
}

void TestContourJoiner::loops()
{
    QFETCH(QByteArray, entities);
    QFETCH(double, tolerance);
    if (entities.contains("ARC")) {
        PrepareOptions options;
        options.join = tolerance;
        options.tolerance = 1; // two chords over the right angle
        QTEST(outline(prepared(drawingOf(entities.constData()), options).bytes)
                  .join(QStringLiteral("; ")),
            "expected");
        return;
    }
    QTEST(joined(entities, tolerance), "expected");
}

void TestContourJoiner::report()
{
    PrepareOptions options;
    options.join = 0;
    const Prepared result = prepared(
        drawingOf(
            lines({ line("0 0", "5 0"), line("5 0", "5 5"), line("5 5", "0 0") }).constData()),
        options);
    QCOMPARE(result.report.notes().at(prep::Note::Joined), qint64(3));
    QCOMPARE(result.report.contours, qint64(1));
}

void TestContourJoiner::longRow()
{
    // A row that closes nowhere; were each walk as long as the row, this would not end.
    constexpr int count = 50000;
    QByteArray drawing = "0\nSECTION\n2\nENTITIES\n";
    for (int i = count; i > 0; --i) {
        drawing += "0\nLINE\n10\n" + QByteArray::number(i) + "\n20\n0\n11\n"
            + QByteArray::number(i - 1) + "\n21\n0\n";
    }
    PrepareOptions options;
    options.join = 0.01;
    QCOMPARE(prepared(drawing, options).report.contours, qint64(count));
}

QTEST_APPLESS_MAIN(TestContourJoiner)
#include "tst_contourjoiner.moc"
