#include "commandrun.h"
#include "samples.h"
#include "support/tempfiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

#include <csignal>
#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

const QByteArray oneLine = "0\nLINE\n10\n0\n20\n0\n11\n5\n21\n5\n";

QByteArray manyLines()
{
    QByteArray mif = mifHeader();
    for (int i = 0; i < 3000; ++i)
        mif += "Line " + QByteArray::number(i) + " 0 1 1\n";
    return mif;
}

} // namespace

/// What a command says of input and output that it can do nothing with, and what it leaves behind.
class TestCliErrors : public QObject {
    Q_OBJECT

private slots:
    void init() { m_folder = std::make_unique<TempFiles>(); }

    // Input

    void unreadableInput_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("error");
        const auto row = [](const char* name, const char* script, int status, const char* error) {
            QTest::newRow(name) << QString::fromUtf8(script) << status << QString::fromUtf8(error);
        };
        row("a folder on standard input", "convert - --format dxf -o out < .", 1,
            "importgeometry: стандартный ввод: не удаётся прочитать");
        row("nothing to prepare", "prepare none.dxf -o out.dxf", 1,
            "none.dxf: файл не открывается");
        row("a pipe to prepare", "prepare pipe.dxf -o out.dxf", 1,
            "pipe.dxf: Ошибка открытия файла pipe.dxf: это именованный канал; данные из канала "
            "подают на стандартный ввод");
        row("no drawing to prepare first", "convert --prepare text.dxf -o out.xml", 1,
            "importgeometry: text.dxf: это не чертёж DXF");
        row("a MID file alone", "check alone.mid", 2,
            "importgeometry: alone.mid: импортируют файл MIF, а MID читается вместе с ним: укажите "
            "alone.mif");
        row("a MID file beside capital letters", "check capital.mid", 2,
            "importgeometry: capital.mid: импортируют файл MIF, а MID читается вместе с ним: "
            "укажите CAPITAL.MIF");
        // Nothing is near a name that long.
        row("a very long option",
            "check --rekursive-rekursive-rekursive-rekursive-rekursive-rekursive-rek .", 2,
            "importgeometry: неизвестный параметр "
            "«--rekursive-rekursive-rekursive-rekursive-rekursive-rekursive-rek»");
    }

    /// What comes through a pipe is kept in a file, which finds no room here.
    void noRoomForStandardInput()
    {
        const CommandRun run = shell(QStringLiteral("head -c 100000 /dev/zero | { ulimit -f 1; "
                                                    "$CLI convert - --format mif -o out.xml; }"));
        QCOMPARE(
            run.errorLines(), words({ "importgeometry: стандартный ввод: не удаётся прочитать" }));
        QCOMPARE(run.status, 1);
        QCOMPARE(written(), QStringList());
    }

    void unreadableInput()
    {
        QFETCH(QString, script);
        QFETCH(int, status);
        QFETCH(QString, error);
        m_folder->write(QStringLiteral("text.dxf"), "no drawing\n");
        m_folder->write(QStringLiteral("alone.mid"), "1\n");
        m_folder->write(QStringLiteral("capital.mid"), "1\n");
        m_folder->write(QStringLiteral("CAPITAL.MIF"), mifHeader());
        QCOMPARE(shell(QStringLiteral("mkfifo pipe.dxf")).status, 0);
        const CommandRun run = shell(QStringLiteral("timeout 60 $CLI ") + script);
        QCOMPARE(run.errorLines().value(0), error);
        QCOMPARE(run.status, status);
        QCOMPARE(written(), QStringList());
    }

    /// Nothing of these files takes room on the disk.
    void largeInput_data()
    {
        QTest::addColumn<QString>("size");
        QTest::addColumn<QString>("limit");
        QTest::addColumn<QString>("error");
        QTest::newRow("more than can be held")
            << QStringLiteral("2200M") << QStringLiteral("unlimited")
            << QStringLiteral("a.dxf: файл слишком велик");
        QTest::newRow("more than there is room for")
            << QStringLiteral("1500M") << QStringLiteral("700000")
            << QStringLiteral("importgeometry: недостаточно памяти");
    }

    void largeInput()
    {
        QFETCH(QString, size);
        QFETCH(QString, limit);
        QFETCH(QString, error);
        const CommandRun run = shell(
            QStringLiteral("truncate -s %1 a.dxf && ulimit -v %2 && $CLI -V >/dev/null || exit 9; "
                           "$CLI prepare a.dxf -o out.dxf")
                .arg(size, limit));
        if (run.status == 9)
            QSKIP("No such file or no such limit can be had here");
        QCOMPARE(run.errorLines(), QStringList(error));
        QCOMPARE(run.status, 1);
        QCOMPARE(written(), QStringList());
    }

    void socket()
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const QByteArray name = QFile::encodeName(m_folder->path(QStringLiteral("a.dxf")));
        if (static_cast<size_t>(name.size()) >= sizeof address.sun_path)
            QSKIP("The folder of temporary files has too long a name");
        std::memcpy(address.sun_path, name.constData(), static_cast<size_t>(name.size()));
        const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
        const int bound =
            bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address);
        const CommandRun run = shell(QStringLiteral("$CLI convert a.dxf -o out.xml"));
        close(descriptor);
        QCOMPARE(bound, 0);
        QCOMPARE(run.errorLines(), words({ "a.dxf: Ошибка открытия файла a.dxf: это сокет" }));
        QCOMPARE(run.status, 1);
        QCOMPARE(written(), QStringList());
    }

    /// The objects have nothing but Latin letters.
    void encodingOfThePoints()
    {
        m_folder->write(QStringLiteral("a.mif"), mifHeader() + "Line 0 0 5 5\n");
        m_folder->write(QStringLiteral("a.mid"), "lot\n");
        m_folder->write(QStringLiteral("p.mif"), mifHeader() + "Point 0 0\nPoint 5 5\n");
        // "точка 1" and "точка 2" in Windows-1251.
        m_folder->write(
            QStringLiteral("p.mid"), "\xF2\xEE\xF7\xEA\xE0 1\n\xF2\xEE\xF7\xEA\xE0 2\n");
        const CommandRun run =
            shell(QStringLiteral("$CLI convert --encoding auto a.mif --points p.mif"));
        QCOMPARE(run.status, 0);
        QVERIFY2(run.errorLines().contains(QStringLiteral("a.mif: кодировка: Windows-1251")),
            qPrintable(run.err));
        QVERIFY2(run.out.contains("точка 1") && run.out.contains("точка 2"), run.out);
    }

    // Output

    void pictureWithoutRoom()
    {
        m_folder->write(QStringLiteral("a.dxf"), drawing(oneLine));
        const CommandRun run =
            shell(QStringLiteral("ulimit -v 1000000 && $CLI -V >/dev/null || exit 9; "
                                 "$CLI plan -q a.dxf --size 20000x20000 -o out.png"));
        if (run.status == 9)
            QSKIP("No such limit can be had here");
        QCOMPARE(run.errorLines(),
            words({ "importgeometry: для рисунка такого размера не хватает памяти" }));
        QCOMPARE(run.status, 1);
        QCOMPARE(written(), QStringList());
    }

    /// Whoever reads standard output may stop when it has enough; a named pipe is a result.
    void pipeThatNobodyReadsToItsEnd()
    {
        m_folder->write(QStringLiteral("a.mif"), manyLines());
        const CommandRun run = shell(QStringLiteral(
            "mkfifo out; head -c 1 out >/dev/null & "
            "timeout 60 $CLI convert -q --search-points off --search-objects off a.mif -o out"));
        QCOMPARE(run.errorLines(),
            words({ "importgeometry: out: ошибка записи: читающая сторона закрыла канал" }));
        QCOMPARE(run.status, 1);
    }

    void exportOfABrokenFile()
    {
        m_folder->write(QStringLiteral("a.mif"), mifHeader() + "Line 0 0 5 5\nLine 0 0 5\n");
        const QStringList error = words({ "a.mif: Ошибка чтения линии из строки: 6" });
        const QString command =
            QStringLiteral("$CLI export -q --search-points off --search-objects off a.mif ");
        const CommandRun run = shell(command + QStringLiteral("-o out.csv"));
        QCOMPARE(run.errorLines(), error);
        QCOMPARE(run.status, 1);
        QCOMPARE(written(), QStringList());
        const CommandRun partial = shell(command + QStringLiteral("--partial --to csv"));
        QCOMPARE(partial.errorLines(), error);
        QCOMPARE(partial.status, 1);
        // A title and the two points of the line.
        QCOMPARE(partial.out.count('\n'), 3);
    }

    void findingsAsJson()
    {
        // Two of one name, and an area that has two vertices.
        m_folder->write(QStringLiteral("a.dxf"),
            drawing("0\nTEXT\n10\n0\n20\n0\n1\nA\n" + oneLine + oneLine
                + "0\nLWPOLYLINE\n90\n2\n70\n1\n10\n0\n20\n0\n10\n5\n20\n5\n"));
        const CommandRun run = shell(QStringLiteral("$CLI check --json a.dxf"));
        QCOMPARE(run.status, 3);
        const QJsonObject report = QJsonDocument::fromJson(run.out).array().first().toObject();
        const QJsonObject duplicate{ { QStringLiteral("designation"), QStringLiteral("A") },
            { QStringLiteral("objects"), QJsonArray{ 1, 2, 3 } } };
        QCOMPARE(report.value(QStringLiteral("duplicates")).toArray(), QJsonArray{ duplicate });
        const QJsonObject incomplete{ { QStringLiteral("object"), 3 },
            { QStringLiteral("designation"), QStringLiteral("A") },
            { QStringLiteral("vertices"), 2 }, { QStringLiteral("needed"), 3 },
            { QStringLiteral("contour"), 1 } };
        QCOMPARE(report.value(QStringLiteral("incomplete")).toArray(), QJsonArray{ incomplete });
    }

    /// A name that turns the direction of writing would do so wherever the answer is shown.
    void namesInAnAnswer()
    {
        const QString name = QStringLiteral("a\u202Eb.dxf");
        m_folder->write(name, drawing(oneLine));
        const CommandRun run =
            runCommand(words({ "prepare", "--json", "-o", "out.dxf" }) + QStringList(name),
                m_folder->path(QString()));
        QCOMPARE(run.status, 0);
        QVERIFY2(run.out.contains("\"a\\u202eb.dxf\""), run.out);
        const QJsonObject answer = QJsonDocument::fromJson(run.out).array().first().toObject();
        QCOMPARE(answer.value(QStringLiteral("file")).toString(), name);
    }

    // Signals

    /// The other program ends, too, and nothing of its work is left.
    void interruptOfAnotherProgram()
    {
        m_folder->write(QStringLiteral("a.shp"), "shape");
        QVERIFY(QDir(m_folder->path(QString())).mkdir(QStringLiteral("bin")));
        QVERIFY(QDir(m_folder->path(QString())).mkdir(QStringLiteral("temporary")));
        const CommandRun made = shell(QStringLiteral(
            "printf '#!/bin/sh\\necho \"Layer name: a\"\\n' >bin/ogrinfo; "
            "printf '#!/bin/sh\\necho $$ >\"%s/started\"; exec sleep 600\\n' \"$PWD\" "
            ">bin/ogr2ogr; chmod +x bin/*"));
        QCOMPARE(made.status, 0);
        QProcess process;
        process.setWorkingDirectory(m_folder->path(QString()));
        startProgram(process, QStringLiteral("sh"),
            { QStringLiteral("-c"),
                QStringLiteral("PATH=\"$PWD/bin:$PATH\" TMPDIR=\"$PWD/temporary\" exec \"%1\" "
                               "prepare a.shp -o out.mif")
                    .arg(commandPath()) });
        const QString started = m_folder->path(QStringLiteral("started"));
        QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(started).size() > 0, 60000);
        kill(static_cast<pid_t>(process.processId()), SIGTERM);
        const CommandRun run = waitFor(process);
        QCOMPARE(run.errorLines(), words({ "importgeometry: прервано" }));
        QCOMPARE(run.status, -1);
        QCOMPARE(written(), QStringList());
        QCOMPARE(QDir(m_folder->path(QStringLiteral("temporary")))
                     .entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
            QStringList());
        const pid_t other = contentOf(started).trimmed().toInt();
        QVERIFY(other > 0);
        QTRY_COMPARE_WITH_TIMEOUT(kill(other, 0), -1, 60000);
    }

    /// Whoever starts a program with nohup wants it to go on.
    void signalThatIsIgnored()
    {
        m_folder->write(QStringLiteral("a.dxf"), drawing(oneLine));
        QCOMPARE(shell(QStringLiteral("mkfifo out")).status, 0);
        QProcess process;
        process.setWorkingDirectory(m_folder->path(QString()));
        startProgram(process, QStringLiteral("sh"),
            { QStringLiteral("-c"),
                QStringLiteral("trap '' INT; exec \"%1\" convert -q a.dxf -o out")
                    .arg(commandPath()) });
        QVERIFY(process.waitForStarted());
        waitForOpening(process);
        kill(static_cast<pid_t>(process.processId()), SIGINT);
        const CommandRun reader = shell(QStringLiteral("timeout 60 cat out"));
        QVERIFY(reader.out.endsWith("</FormTable>"));
        const CommandRun run = waitFor(process);
        QCOMPARE(run.err, QString());
        QCOMPARE(run.status, 0);
    }

private:
    CommandRun shell(const QString& script) const
    {
        return runShell(script, m_folder->path(QString()));
    }

    /// What stands under the name that results have here, even hidden.
    QStringList written() const
    {
        return QDir(m_folder->path(QString()))
            .entryList({ QStringLiteral("*out*") }, QDir::Files | QDir::Hidden);
    }

    std::unique_ptr<TempFiles> m_folder;
};

QTEST_GUILESS_MAIN(TestCliErrors)
#include "tst_clierrors.moc"
