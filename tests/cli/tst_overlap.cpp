#include "commandrun.h"
#include "samples.h"
#include "support/tempfiles.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

namespace {

/// A MIF file of `count` lines, more than are passed on at a time.
QByteArray manyLines(int count)
{
    QByteArray mif = mifHeader();
    for (int i = 0; i < count; ++i)
        mif += "Line " + QByteArray::number(i) + " 0 " + QByteArray::number(i) + " 5\n";
    return mif;
}

} // namespace

/// A result that is written while its file is read.
class TestOverlap : public QObject {
    Q_OBJECT

private slots:
    void sameResult_data()
    {
        QTest::addColumn<QByteArray>("mif");
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<int>("status");
        const QByteArray whole = manyLines(1000);
        const QByteArray broken = whole + "Line 1 2 3\n" + "Line 7 7 8 8\n";
        const QStringList alone = words({ "--search-points=off", "--search-objects=off" });
        QTest::newRow("no object") << mifHeader() << alone << 0;
        QTest::newRow("few objects") << manyLines(3) << alone << 0;
        QTest::newRow("full batches") << manyLines(512) << alone << 0;
        QTest::newRow("many objects") << whole << alone << 0;
        QTest::newRow("sorted") << whole << alone + words({ "--sort" }) << 0;
        QTest::newRow("part of them") << broken << alone + words({ "--partial" }) << 1;
    }

    /// Whoever asks for one job gets the whole import before the first byte of the result, and so
    /// does standard output.
    void sameResult()
    {
        QFETCH(QByteArray, mif);
        QFETCH(QStringList, options);
        QFETCH(int, status);
        QTemporaryDir folder;
        writeFile(folder.filePath(QStringLiteral("lines.mif")), mif);
        const QStringList convert = words({ "convert", "--quiet", "lines.mif" }) + options;
        const auto run = [&](std::initializer_list<const char*> more) {
            return runCommand(convert + words(more), folder.path());
        };
        QCOMPARE(run({ "-o", "meanwhile.xml" }).status, status);
        QCOMPARE(run({ "-o", "afterwards.xml", "--jobs", "1" }).status, status);
        const CommandRun printed = run({});
        QCOMPARE(printed.status, status);
        QVERIFY(printed.out.contains("<FormTable"));
        QCOMPARE(contentOf(folder.filePath(QStringLiteral("meanwhile.xml"))), printed.out);
        QCOMPARE(contentOf(folder.filePath(QStringLiteral("afterwards.xml"))), printed.out);
    }

    void brokenFileLeavesNoResult()
    {
        QTemporaryDir folder;
        writeFile(folder.filePath(QStringLiteral("lines.mif")), manyLines(1000) + "Line 1 2 3\n");
        const CommandRun run =
            runCommand(words({ "convert", "--search-points=off", "--search-objects=off",
                           "lines.mif", "-o", "lines.xml" }),
                folder.path());
        QCOMPARE(run.status, 1);
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), words({ "lines.mif" }));
    }

    /// A result that finds no room is an error, however late that shows.
    void failedWriteLeavesNoResult()
    {
        QTemporaryDir folder;
        writeFile(folder.filePath(QStringLiteral("lines.mif")), manyLines(5000));
        const CommandRun run =
            runShell(QStringLiteral("ulimit -f 200; \"$CLI\" convert --search-points=off "
                                    "--search-objects=off lines.mif "
                                    "-o lines.xml"),
                folder.path());
        QCOMPARE(run.status, 1);
        QVERIFY2(run.err.contains(QStringLiteral("lines.xml: ошибка записи")), qPrintable(run.err));
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), words({ "lines.mif" }));
    }
};

QTEST_GUILESS_MAIN(TestOverlap)
#include "tst_overlap.moc"
