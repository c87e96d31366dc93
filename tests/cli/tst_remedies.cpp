#include "commandrun.h"
#include "samples.h"
#include "support/tempfiles.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>
#include <QtEndian>

#include <array>

namespace {

const QByteArray line = "0\nLINE\n10\n0\n20\n0\n11\n5\n21\n5\n";
const QByteArray entities = "0\nSECTION\n2\nENTITIES\n";

QByteArray polyline(const QByteArray& flags)
{
    QByteArray text = "0\nPOLYLINE\n70\n" + flags + '\n';
    for (const char* vertex : { "10\n0\n20\n0\n", "10\n9\n20\n0\n", "10\n9\n20\n9\n" })
        text += QByteArray("0\nVERTEX\n") + vertex;
    return text + "0\nSEQEND\n";
}

/// A drawing with another section before its entities.
QByteArray drawingWith(const QByteArray& section, const QByteArray& content)
{
    return drawing(content).replace(entities, section + entities);
}

/// A drawing with one line, in the binary form: codes of two bytes, numbers of eight.
QByteArray binaryDrawing()
{
    QByteArray bytes("AutoCAD Binary DXF\r\n\x1A\0", 22);
    const auto code = [&bytes](int value) { bytes.append(static_cast<char>(value)).append('\0'); };
    const auto text = [&](int value, const char* content) {
        code(value);
        bytes.append(content).append('\0');
    };
    const auto number = [&](int value, double content) {
        code(value);
        std::array<char, sizeof content> raw{};
        qToLittleEndian(content, raw.data());
        bytes.append(raw.data(), static_cast<int>(raw.size()));
    };
    for (const char* section : { "HEADER", "ENTITIES" }) {
        text(0, "SECTION");
        text(2, section);
        if (QByteArray(section) == "HEADER")
            text(0, "ENDSEC");
    }
    text(0, "LINE");
    number(10, 1);
    number(20, 2);
    number(11, 7);
    number(21, 9);
    text(0, "ENDSEC");
    text(0, "EOF");
    return bytes;
}

QJsonObject causeOf(const QString& file, const QString& id, const QString& folder)
{
    const CommandRun run = runCommand(
        words({ "check", "--json", "--encoding=auto", "--" }) + QStringList(file), folder);
    const QJsonObject report = QJsonDocument::fromJson(run.out).array().first().toObject();
    for (const QJsonValue& cause : report.value(QLatin1String("causes")).toArray()) {
        if (cause.toObject().value(QLatin1String("id")) == id)
            return cause.toObject();
    }
    return {};
}

} // namespace

/// Every remedy that is a command line is run as it stands; what it writes has the cause no more
/// and is imported.
class TestRemedies : public QObject {
    Q_OBJECT

private slots:
    void commandLines_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QByteArray>("mid");
        const auto dxf = [](const char* id, const QByteArray& content) {
            QTest::newRow(id) << QStringLiteral("план 1.dxf") << content << QByteArray();
        };
        const auto mif = [](const char* id, const QByteArray& content, const QByteArray& mid) {
            QTest::newRow(id) << QStringLiteral("a.mif") << content << mid;
        };
        dxf("blank-first-line", "\n" + drawing(line));
        dxf("leading-comment", "999\nby a program\n" + drawing(line));
        dxf("missing-header", drawing(line).mid(headerSection().size()));
        const QByteArray blocks = "0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n2\nP\n10\n0\n20\n0\n" + line
            + "0\nENDBLK\n0\nENDSEC\n";
        const QByteArray insert = "0\nINSERT\n2\nP\n10\n0\n20\n0\n";
        dxf("block-inserts", drawingWith(blocks, insert));
        dxf("mtext", drawing(line + "0\nMTEXT\n10\n0\n20\n0\n1\nA\n"));
        dxf("unsorted-texts",
            drawing(
                line + "0\nTEXT\n10\n5\n20\n0\n40\n1\n1\nA\n0\nTEXT\n10\n0\n20\n0\n40\n1\n1\nB\n"));
        dxf("closed-flag", drawing(polyline("9")));
        dxf("bulges", drawing("0\nLWPOLYLINE\n90\n2\n70\n0\n10\n0\n20\n0\n42\n1\n10\n9\n20\n0\n"));
        dxf("left-out", drawing(line + "0\nARC\n10\n0\n20\n0\n40\n5\n50\n0\n51\n90\n"));
        const QByteArray layers = "0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nLAYER\n70\n1\n"
                                  "0\nLAYER\n2\nOFF\n70\n0\n62\n-7\n0\nENDTAB\n0\nENDSEC\n";
        dxf("hidden-layers",
            drawingWith(layers, line + QByteArray(line).replace("LINE\n", "LINE\n8\nOFF\n")));
        dxf("paper-space", drawing(line + QByteArray(line).replace("LINE\n", "LINE\n67\n1\n")));
        dxf("mesh", drawing(line + polyline("16")));
        dxf("one-vertex", drawing("0\nLWPOLYLINE\n90\n1\n70\n0\n10\n0\n20\n0\n" + line));
        dxf("blank-line", drawing(line + "\n" + line));
        dxf("trailing-blank-line", drawing(line) + "\n");
        dxf("bad-object", drawing(line + "0\nLINE\n10\n0\n20\n0\n"));
        const QByteArray body = "Line 0 0 1 1\n";
        mif("mif-header", mifHeader().replace("Charset \"Neutral\"\n", "") + body, "a\n");
        mif("delimiter", mifHeader().replace(",", "\t") + body, "a\n");
        mif("delimiter-missing", mifHeader().replace("Delimiter \",\"\n", "") + body, "a\tb\n");
        mif("mid-blank-row", mifHeader() + body + body, "\nb\n");
        mif("mid-too-short", mifHeader() + body + body, "a\n");
        mif("mid-too-long", mifHeader() + body, "\"a\nb\"\n");
        mif("collection",
            mifHeader() + "Collection 2\nRegion 1\n4\n0 0\n1 0\n1 1\n0 0\nPline 2\n0 0\n1 1\n",
            "a\n");
        mif("count-on-next-line", mifHeader() + "Pline\n2\n0 0\n1 0\n", "a\n");
        mif("no-objects", mifHeader() + "Ellipse 0 0 4 4\n", "a\n");
        mif("axes", mifHeader() + "Line 451234 2201234 451250 2201250\n", "a\n");
    }

    void commandLines()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, content);
        QFETCH(QByteArray, mid);
        const TempFiles folder;
        folder.write(file, content);
        if (!mid.isEmpty())
            folder.write(QStringLiteral("a.mid"), mid);
        const QString id = QString::fromLatin1(QTest::currentDataTag());
        const QJsonObject cause = causeOf(file, id, folder.path(QStringLiteral(".")));
        QVERIFY2(!cause.isEmpty(), "the file has the cause");

        const QString remedy = cause.value(QLatin1String("remedy")).toString();
        const QString name = QStringLiteral("importgeometry");
        const int start = remedy.indexOf(QStringLiteral(": ") + name);
        QVERIFY2(start > 0, qPrintable(remedy));
        const QString command = QStringLiteral("$CLI") + remedy.mid(start + 2 + name.size());
        const CommandRun prepared = runShell(command, folder.path(QStringLiteral(".")));
        // Parts that cannot be taken over are told by the status, too.
        QVERIFY2(prepared.status == 0 || prepared.status == 3, qPrintable(prepared.err));

        const QString result =
            file.left(file.size() - 4) + QStringLiteral("-готов") + file.right(4);
        QVERIFY2(causeOf(result, id, folder.path(QStringLiteral("."))).isEmpty(),
            qPrintable(prepared.err));
        const CommandRun run =
            runCommand(words({ "convert", "-q", "--encoding=auto" }) + QStringList(result),
                folder.path(QStringLiteral(".")));
        QCOMPARE(run.err, QString());
        QCOMPARE(run.status, 0);
        QVERIFY(run.out.contains("<Row>"));
    }

    /// All blank lines of a file are told at once, and one command mends them.
    void blankLinesAtOnce()
    {
        constexpr int count = 15;
        const TempFiles folder;
        const QString path = folder.path(QStringLiteral("."));
        QByteArray mif = mifHeader();
        QByteArray mid;
        for (int i = 0; i < count; ++i) {
            mif += "Region 1\n4\n0 0\n1 0\n\n1 1\n0 0\n";
            mid += "A" + QByteArray::number(i) + '\n';
        }
        folder.write(QStringLiteral("a.mif"), mif);
        folder.write(QStringLiteral("a.mid"), mid);
        const QString id = QStringLiteral("blank-line");
        const QString text =
            causeOf(QStringLiteral("a.mif"), id, path).value(QLatin1String("cause")).toString();
        QVERIFY2(text.endsWith(QStringLiteral("пустых строк отсюда до конца файла: 15.")),
            qPrintable(text));
        QCOMPARE(runShell(QStringLiteral("$CLI prepare a.mif -o b.mif"), path).status, 0);
        const CommandRun run =
            runCommand(words({ "export", "b.mif", "--to=csv", "-q", "--strict" }), path);
        QCOMPARE(run.status, 0);
        for (int i = 0; i < count; ++i)
            QVERIFY(run.out.contains("\nA" + QByteArray::number(i) + ",1,1,"));
    }

    /// A MID whose name has other letters.
    void midOtherCase()
    {
        const TempFiles folder;
        const QString path = folder.path(QStringLiteral("."));
        folder.write(QStringLiteral("a.mif"), mifHeader() + "Line 0 0 1 1\n");
        folder.write(QStringLiteral("A.MID"), "уч. 5\n");
        const QString id = QStringLiteral("mid-other-case");
        const QJsonObject cause = causeOf(QStringLiteral("a.mif"), id, path);
        const QString remedy = cause.value(QLatin1String("remedy")).toString();
        const QString command = remedy.mid(remedy.indexOf(QLatin1String(": ")) + 2);
        QVERIFY2(command.startsWith(QLatin1String("importgeometry ")), qPrintable(remedy));
        const CommandRun prepared =
            runShell(QString(command).replace(0, 14, QStringLiteral("$CLI")), path);
        QVERIFY2(prepared.status == 0, qPrintable(prepared.err));
        QVERIFY(causeOf(QStringLiteral("a-готов.mif"), id, path).isEmpty());
        const CommandRun run =
            runCommand(words({ "convert", "-q", "--encoding=auto", "a-готов.mif" }), path);
        QCOMPARE(run.status, 0);
        QVERIFY2(run.out.contains("уч. 5"), run.out.constData());

        // The other remedy: the name that the message has.
        QVERIFY(QFile::rename(
            folder.path(QStringLiteral("A.MID")), folder.path(QStringLiteral("a.mid"))));
        QVERIFY(causeOf(QStringLiteral("a.mif"), id, path).isEmpty());
        QCOMPARE(
            runCommand(words({ "convert", "-q", "--encoding=UTF-8", "a.mif" }), path).out, run.out);
    }

    /// A binary drawing, whose remedy writes it as a text.
    void notText()
    {
        const TempFiles folder;
        const QString path = folder.path(QStringLiteral("."));
        folder.write(QStringLiteral("a.dxf"), binaryDrawing());
        const QString id = QStringLiteral("not-text");
        const QString remedy =
            causeOf(QStringLiteral("a.dxf"), id, path).value(QLatin1String("remedy")).toString();
        const int start = remedy.indexOf(QLatin1String("importgeometry "));
        QVERIFY2(start > 0, qPrintable(remedy));
        const QString command = remedy.mid(start, remedy.indexOf(QLatin1Char(';')) - start).mid(14);
        const CommandRun prepared = runShell(QStringLiteral("$CLI") + command, path);
        QVERIFY2(prepared.status == 0, qPrintable(prepared.err));
        QVERIFY(causeOf(QStringLiteral("a-готов.dxf"), id, path).isEmpty());
        const CommandRun run = runCommand(words({ "convert", "-q", "a-готов.dxf" }), path);
        QCOMPARE(run.status, 0);
        QVERIFY2(run.out.contains("<Cell>7.00</Cell>"), run.out.constData());
    }

    /// The delimiter that the rows have, put in the place of the header's.
    void midDelimiter()
    {
        const TempFiles folder;
        const QString path = folder.path(QStringLiteral("."));
        const QByteArray header =
            mifHeader().replace("Data\n", "Columns 2\n  A Char(9)\n  B Char(9)\nData\n");
        folder.write(QStringLiteral("a.mif"), header + "Line 0 0 1 1\n");
        folder.write(QStringLiteral("a.mid"), "A1;7\n");
        const QString id = QStringLiteral("mid-delimiter");
        const QJsonObject cause = causeOf(QStringLiteral("a.mif"), id, path);
        QVERIFY(cause.value(QLatin1String("cause"))
                    .toString()
                    .contains(QStringLiteral("точка с запятой")));
        QVERIFY(cause.value(QLatin1String("remedy"))
                    .toString()
                    .startsWith(QStringLiteral("Впишите этот разделитель в строку Delimiter")));
        folder.write(QStringLiteral("a.mif"),
            QByteArray(header).replace("Delimiter \",\"", "Delimiter \";\"") + "Line 0 0 1 1\n");
        QVERIFY(causeOf(QStringLiteral("a.mif"), id, path).isEmpty());
        const CommandRun run = runCommand(words({ "convert", "-q", "a.mif" }), path);
        QCOMPARE(run.status, 0);
        QVERIFY2(run.out.contains("<Cell>A1</Cell>"), run.out.constData());
    }

    /// Both ways that the remedy names to choose the encoding.
    void encoding()
    {
        const TempFiles folder;
        const QString path = folder.path(QStringLiteral("."));
        folder.write(QStringLiteral("a.mif"), mifHeader() + "Line 0 0 1 1\n");
        folder.write(QStringLiteral("a.mid"), "\xD3\xF7\xE0\xF1\xF2\xEE\xEA\n");
        const CommandRun check = runCommand(words({ "check", "--encoding=UTF-8", "a.mif" }), path);
        const QString out = QString::fromUtf8(check.out);
        const int start = out.indexOf(QLatin1String("(--encoding "));
        QVERIFY2(start > 0, qPrintable(out));
        const QString options =
            out.mid(start + 1, out.indexOf(QLatin1Char(')'), start) - start - 1);
        const QStringList ways = options.split(QStringLiteral(" или "));
        QCOMPARE(ways, words({ "--encoding Windows-1251", "--encoding auto" }));
        for (const QString& way : ways) {
            QCOMPARE(runShell(QStringLiteral("$CLI check -q a.mif ") + way, path).status, 0);
            const CommandRun run = runShell(QStringLiteral("$CLI convert -q a.mif ") + way, path);
            QCOMPARE(run.status, 0);
            QVERIFY2(run.out.contains("Участок"), run.out.constData());
        }
    }

    /// A command line of a remedy is one that a shell reads as it is meant, whatever the name.
    void namesInRemedies_data()
    {
        QTest::addColumn<QString>("name");
        for (const char* name :
            { "план 1", "a'b", "a\"b", "$HOME", "a;b", "-o", "(1)", "a*b", "№5" })
            QTest::newRow(name) << QString::fromUtf8(name);
    }

    void namesInRemedies()
    {
        QFETCH(QString, name);
        const TempFiles folder;
        const QString path = folder.path(QStringLiteral("."));
        folder.write(name + QStringLiteral(".dxf"), "999\nby a program\n" + drawing(line));
        const QString remedy =
            causeOf(name + QStringLiteral(".dxf"), QStringLiteral("leading-comment"), path)
                .value(QLatin1String("remedy"))
                .toString();
        const QString command = remedy.mid(remedy.indexOf(QLatin1String("importgeometry ")) + 14);
        const CommandRun prepared = runShell(QStringLiteral("$CLI") + command, path);
        QVERIFY2(prepared.status == 0, qPrintable(remedy + prepared.err));
        QVERIFY(QFile::exists(folder.path(name + QStringLiteral("-готов.dxf"))));
    }

    void withoutTheMid()
    {
        const TempFiles folder;
        folder.write(QStringLiteral("a.mif"), mifHeader() + "Line 0 0 1 1\n");
        const QString remedy = causeOf(QStringLiteral("a.mif"), QStringLiteral("mid-missing"),
            folder.path(QStringLiteral(".")))
                                   .value(QLatin1String("remedy"))
                                   .toString();
        const QString options = remedy.mid(remedy.indexOf(QLatin1String("--"))).chopped(1);
        QCOMPARE(runShell(QStringLiteral("$CLI convert a.mif ") + options,
                     folder.path(QStringLiteral(".")))
                     .status,
            0);
    }

    void degreesAreReprojected()
    {
        const TempFiles folder;
        if (runShell(QStringLiteral("command -v ogr2ogr"), folder.path(QStringLiteral("."))).status
            != 0)
            QSKIP("ogr2ogr is not installed");
        folder.write(QStringLiteral("a.mif"),
            mifHeader().replace("Data\n", "Columns 1\n  Name Char(10)\nData\n")
                + "Region 1\n4\n37.60 55.70\n37.61 55.70\n37.61 55.71\n37.60 55.70\n");
        folder.write(QStringLiteral("a.mid"), "A\n");
        const QString id = QStringLiteral("degrees");
        const QString remedy =
            causeOf(QStringLiteral("a.mif"), id, folder.path(QStringLiteral(".")))
                .value(QLatin1String("remedy"))
                .toString();
        const QString command = remedy.mid(remedy.indexOf(QLatin1String("ogr2ogr")));
        QVERIFY2(command.contains(QLatin1String("EPSG:32637")), qPrintable(remedy));
        const CommandRun reprojected = runShell(command, folder.path(QStringLiteral(".")));
        QVERIFY2(reprojected.status == 0, qPrintable(reprojected.err));
        const QString metres = QStringLiteral("a-метры.mif");
        QVERIFY(causeOf(metres, id, folder.path(QStringLiteral("."))).isEmpty());
        const CommandRun run =
            runCommand(words({ "convert", "-q", "--search-points=off" }) + QStringList(metres),
                folder.path(QStringLiteral(".")));
        QCOMPARE(run.status, 0);
        // A zone's easting lies around 500 kilometres.
        QVERIFY2(run.out.contains("<Cell>412"), run.out.constData());
    }
};

QTEST_GUILESS_MAIN(TestRemedies)
#include "tst_remedies.moc"
