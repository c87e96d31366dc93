#include "commandrun.h"
#include "samples.h"
#include "support/tempfiles.h"
#include "survey/encodingguess.h"
#include "survey/filesurvey.h"
#include "survey/findings.h"
#include "survey/surveyor.h"

#include <QDir>
#include <QTest>
#include <QTextCodec>

namespace {

const QByteArray line = "0\nLINE\n10\n0\n20\n0\n11\n5\n21\n5\n";
const QByteArray square = "0\nLWPOLYLINE\n90\n4\n70\n1\n10\n0\n20\n0\n10\n9\n20\n0\n10\n9\n20\n9\n"
                          "10\n0\n20\n9\n";

/// POLYLINE with the given flags, of three vertices.
QByteArray polyline(const QByteArray& flags)
{
    QByteArray text = "0\nPOLYLINE\n70\n" + flags + '\n';
    for (const char* vertex : { "10\n0\n20\n0\n", "10\n9\n20\n0\n", "10\n9\n20\n9\n" })
        text += QByteArray("0\nVERTEX\n") + vertex;
    return text + "0\nSEQEND\n";
}

/// "cause line count" of each cause, with the detail in brackets.
QStringList describe(const QVector<FoundCause>& causes)
{
    QStringList texts;
    for (const FoundCause& found : causes) {
        texts.append(QStringLiteral("%1 %2 %3 [%4]")
                         .arg(causeId(found.cause))
                         .arg(found.line)
                         .arg(found.count)
                         .arg(found.detail));
    }
    return texts;
}

/// "kind count/read" of each kind.
QStringList describe(const std::map<std::string, KindCount>& kinds)
{
    QStringList texts;
    for (const auto& [name, kind] : kinds) {
        texts.append(QStringLiteral("%1 %2/%3")
                         .arg(QString::fromStdString(name))
                         .arg(kind.count)
                         .arg(kind.read));
    }
    return texts;
}

ImportOptions utf8()
{
    ImportOptions options = ImportOptions::offered();
    options.encoding = "UTF-8";
    return options;
}

/// Imports a file and surveys it.
FileSurvey surveyOf(const QString& path, ImportOptions options)
{
    const Format& format = *formatOfFile(path);
    options.objectFileName = path;
    const auto surveyor = makeSurveyor(format, options, FileRole::Objects);
    surveyor->look();
    return surveyor->judged(runImport(format, options));
}

DefPolygon polygon(const QVector<QVector<DefPoint>>& contours)
{
    return { QStringLiteral("ЗУ1"), contours };
}

} // namespace

class TestSurvey : public QObject {
    Q_OBJECT

private slots:
    void dxfCauses_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QStringList>("causes");
        const auto row = [](const char* name, const QByteArray& content, const char* cause) {
            QTest::newRow(name) << content
                                << QString::fromUtf8(cause).split(
                                       QStringLiteral("; "), Qt::SkipEmptyParts);
        };

        row("sound", drawing(line), "");
        row("empty", "", "empty-file 0 0 []");
        row("binary", "AutoCAD Binary DXF\r\n\x1a", "not-text 0 0 [двоичный DXF]");
        row("DWG", "AC1015", "not-text 0 0 [чертёж DWG]");
        row("blank first line", "\n" + drawing(line), "blank-first-line 1 0 []");
        row("comment", "999\nby a program\n" + drawing(line), "leading-comment 1 0 []");
        row("comments with blanks", "  999\nby a\r\n999\nprogram\n" + drawing(line),
            "leading-comment 1 0 []");
        row("no header section", drawing(line).mid(headerSection().size()),
            "missing-header 1 0 [ENTITIES]");
        row("another file", "<svg/>\n", "not-dxf 1 0 []");
        row("inserts alone", drawing("0\nINSERT\n2\nP\n10\n0\n20\n0\n0\nINSERT\n10\n1\n20\n1\n"),
            "block-inserts 0 2 []");
        row("inserts alone beside curves", drawing("0\nINSERT\n10\n1\n20\n1\n0\nARC\n0\nARC\n"),
            "block-inserts 0 1 []; left-out 0 2 [ARC - 2]");
        row("inserts beside lines", drawing(line + "0\nINSERT\n2\nP\n10\n0\n20\n0\n"), "");
        row("MTEXT alone", drawing(line + "0\nMTEXT\n10\n0\n20\n0\n1\nA\n"), "mtext 0 1 []");
        row("MTEXT beside TEXT", drawing(line + "0\nMTEXT\n1\nA\n0\nTEXT\n10\n0\n20\n0\n1\nA\n"),
            "left-out 0 1 [MTEXT - 1]");
        row("curves beside lines", drawing(line + "0\nARC\n0\nARC\n0\nSPLINE\n0\nVIEWPORT\n"),
            "left-out 0 3 [ARC - 2, SPLINE - 1]");
        row("paper space", drawing(QByteArray(line).replace("LINE\n", "LINE\n67\n1\n")),
            "paper-space 0 1 []");
        row("one vertex of two polylines",
            drawing("0\nLWPOLYLINE\n90\n1\n10\n0\n20\n0\n" + square
                + "0\nLWPOLYLINE\n90\n1\n10\n0\n20\n0\n"),
            "one-vertex 12 2 []");
        const QByteArray blocks =
            "0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n2\nP\n" + line + "0\nENDBLK\n0\nENDSEC\n";
        row("block with lines beside lines",
            drawing(line + "0\nINSERT\n2\nP\n10\n0\n20\n0\n")
                .replace("0\nSECTION\n2\nENTITIES\n", blocks + "0\nSECTION\n2\nENTITIES\n"),
            "left-out 0 1 [вставки блоков с линиями (INSERT) - 1]");
        const QByteArray layers = "0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nLAYER\n"
                                  "0\nLAYER\n2\nFROZEN\n70\n1\n62\n7\n"
                                  "0\nLAYER\n2\nOFF\n70\n0\n62\n-7\n"
                                  "0\nLAYER\n2\nON\n70\n0\n62\n7\n0\nENDTAB\n0\nENDSEC\n";
        const auto onLayer = [](const char* layer) {
            return QByteArray(line).replace("LINE\n", QByteArray("LINE\n8\n") + layer + "\n");
        };
        row("hidden layers",
            drawing(onLayer("FROZEN") + onLayer("OFF") + onLayer("ON"))
                .replace("0\nSECTION\n2\nENTITIES\n", layers + "0\nSECTION\n2\nENTITIES\n"),
            "hidden-layers 0 2 []");
        row("a MIF file", "Version 300\nCharset \"Neutral\"\n", "other-format 0 0 [MIF]");
        row("a table", "!table\n!version 300\n",
            "other-format 0 0 [таблица MapInfo (TAB), а не MIF]");
        const QByteArray texts = "0\nTEXT\n10\n5\n20\n0\n1\nA\n0\nTEXT\n10\n0\n20\n0\n1\nB\n";
        row("texts without points", drawing(line + texts), "unsorted-texts 0 2 []");
        row("texts beside a point", drawing(line + texts + "0\nPOINT\n10\n0\n20\n0\n"), "");
        row("closed by 1", drawing(polyline("1")), "");
        row("open", drawing(polyline("128")), "");
        row("closed by 129", drawing(polyline("129")), "closed-flag 12 1 [129]");
        row("closed by 9, twice", drawing(polyline("9") + polyline("9")), "closed-flag 12 2 [9]");
        row("closed mesh", drawing(polyline("17")), "mesh 12 1 []");
        row("faces", drawing(polyline("64")), "mesh 12 1 []");
        row("LWPOLYLINE closed by 129", drawing(QByteArray(square).replace("70\n1", "70\n129")),
            "");
        row("bulges", drawing(QByteArray(square).replace("20\n9\n", "20\n9\n42\n-0.5\n")),
            "bulges 0 2 []");
        row("bulges of nought", drawing(QByteArray(square).replace("20\n9\n", "20\n9\n42\n0.0\n")),
            "");
        row("bulge of a VERTEX",
            drawing(polyline("1").replace("10\n9\n20\n0\n", "10\n9\n20\n0\n42\n1\n")),
            "bulges 0 1 []");
        row("42 of another kind", drawing(line + "0\nARC\n42\n1\n"), "left-out 0 1 [ARC - 1]");
        row("blank line", drawing(line + "\n" + line), "blank-line 21 1 []");
        row("blank line at the end", drawing(line) + "\n", "trailing-blank-line 25 0 []");
        row("blank lines at the end", drawing(line) + "\n \r\n", "trailing-blank-line 25 0 []");
        row("line without an end", drawing("0\nLINE\n10\n0\n20\n0\n"), "bad-object 12 0 [LINE]");
        row("word for a number", drawing("0\nPOINT\n10\n0\n20\nzero\n"), "bad-object 12 0 [POINT]");
        row("one vertex declared", drawing("0\nLWPOLYLINE\n90\n1\n10\n0\n20\n0\n"),
            "one-vertex 12 1 []");
        row("count behind the first vertex",
            drawing("0\nLWPOLYLINE\n10\n0\n20\n0\n90\n2\n10\n1\n20\n1\n"),
            "bad-object 12 0 [LWPOLYLINE]");
        row("bad second point of a TEXT, unused",
            drawing(line + "0\nTEXT\n10\n0\n20\n0\n11\nx\n21\n0\n1\nA\n"), "");
        row("bad second point of a TEXT, used",
            drawing(line + "0\nTEXT\n10\n0\n20\n0\n11\nx\n21\n0\n72\n1\n1\nA\n"),
            "bad-object 22 0 [TEXT]");
        row("bad axis of an ELLIPSE", drawing(line + "0\nELLIPSE\n10\n0\n20\n0\n11\nx\n21\n0\n"),
            "");
        row("no-break spaces around a number",
            drawing(QByteArray(line).replace("5\n",
                "\xC2\xA0"
                "5\xC2\xA0\n")),
            "");
        row("blank value", drawing("0\nLINE\n10\n\n20\n0\n11\n1\n21\n1\n"),
            "bad-object 12 0 [LINE]");
        row("cut off behind a section", headerSection() + "0\nSECTION\n",
            "bad-object 8 0 [SECTION]");
        row("bulges of a refused file",
            "999\na\n" + drawing(QByteArray(square).replace("20\n9\n", "20\n9\n42\n1\n")),
            "leading-comment 1 0 []");
        row("POLYLINE without SEQEND", drawing(polyline("1").replace("0\nSEQEND\n", "")),
            "bad-object 12 0 [POLYLINE]");
    }

    void dxfCauses()
    {
        QFETCH(QByteArray, content);
        QFETCH(QStringList, causes);
        QCOMPARE(describe(survey("a.dxf", content, utf8()).causes), causes);
    }

    void mifCauses_data()
    {
        QTest::addColumn<QByteArray>("mif");
        QTest::addColumn<QByteArray>("mid");
        QTest::addColumn<QStringList>("causes");
        const auto row = [](const char* name, const QByteArray& mif, const QByteArray& mid,
                             const char* cause) {
            QStringList causes;
            if (*cause != '\0')
                causes.append(QString::fromUtf8(cause));
            QTest::newRow(name) << mif << mid << causes;
        };
        const auto replaced = [](const char* before, const char* after) {
            return mifHeader().replace(before, after) + "Line 0 0 1 1\n";
        };

        row("sound", mifHeader() + "Line 0 0 1 1\n", "a\n", "");
        row("empty", "", "", "empty-file 0 0 []");
        row("blank first line", "\n" + mifHeader(), "", "blank-first-line 1 0 []");
        row("tab", replaced("\",\"", "\"\t\""), "a\n", "delimiter 3 0 []");
        row("space", replaced("\",\"", "\" \""), "a\n", "delimiter 3 0 []");
        row("semicolon", replaced(",", ";"), "a\n", "");
        row("no Delimiter", replaced("Delimiter \",\"\n", ""), "a\n", "delimiter-missing 3 0 []");
        row("no Charset", replaced("Charset \"Neutral\"\n", ""), "a\n", "mif-header 2 0 [Charset]");
        row("no Data", mifHeader().replace("Data\n", ""), "a\n", "no-data 0 0 []");
        row("blank line between rings", mifHeader() + "Region 2\n3\n0 0\n1 0\n0 0\n\n3\n", "a\n",
            "blank-line 10 1 []");
        row("blank line between vertices", mifHeader() + "Pline 2\n0 0\n\n1 0\n", "a\n",
            "blank-line 7 1 []");
        row("blank line between objects", mifHeader() + "Line 0 0 1 1\n\nLine 0 0 1 1\n", "a\nb\n",
            "");
        row("count on the next line", mifHeader() + "Pline\n2\n0 0\n1 0\n", "a\n",
            "count-on-next-line 5 0 [PLINE]");
        row("count of sections on the next line",
            mifHeader() + "Pline Multiple\n2\n2\n0 0\n1 0\n2\n0 0\n1 0\n", "a\n",
            "count-on-next-line 5 0 [PLINE]");
        row("count too small", mifHeader() + "Pline 1\n0 0\n", "a\n", "bad-object 5 0 [PLINE]");
        row("word for a number", mifHeader() + "Line 0 0 one 1\n", "a\n", "bad-object 5 0 [LINE]");
        row("cut off", mifHeader() + "Pline 3\n0 0\n1 0\n", "a\n", "bad-object 7 0 [PLINE]");
        row("cut off before blank lines", mifHeader() + "Pline 3\n0 0\n1 0\n\n \n", "a\n",
            "bad-object 8 0 [PLINE]");
        row("collection", mifHeader() + "Line 0 0 1 1\nCollection 2\nLine 0 0 1 1\n", "a\nb\nc\n",
            "collection 6 0 []");
        row("blank row", mifHeader() + "Line 0 0 1 1\nLine 0 0 1 1\n", "a\n\nb\n",
            "mid-blank-row 2 0 []");
        row("too few rows", mifHeader() + "Line 0 0 1 1\nLine 0 0 1 1\n", "a\n",
            "mid-too-short 2 0 []");
        row("a row broken in two", mifHeader() + "Line 0 0 1 1\n", "\"a\nb\"\n",
            "mid-too-long 0 1 []");
    }

    void mifCauses()
    {
        QFETCH(QByteArray, mif);
        QFETCH(QByteArray, mid);
        QFETCH(QStringList, causes);
        const TempFiles folder;
        folder.write(QStringLiteral("a.mid"), mid);
        folder.write(QStringLiteral("a.mif"), mif);
        QCOMPARE(describe(surveyOf(folder.path(QStringLiteral("a.mif")), utf8()).causes), causes);
    }

    void midUnderAnotherName_data()
    {
        QTest::addColumn<QString>("mid");
        QTest::addColumn<QString>("cause");
        const auto row = [](const char* name, const char* mid, const char* cause) {
            QTest::newRow(name) << QString::fromLatin1(mid) << QString::fromLatin1(cause);
        };
        row("none", "other.mid", "mid-missing 0 0 []");
        row("upper case", "a.MID", "mid-other-case 0 0 [a.MID]");
        row("name in upper case", "A.mid", "mid-other-case 0 0 [A.mid]");
    }

    void midUnderAnotherName()
    {
        QFETCH(QString, mid);
        QFETCH(QString, cause);
        const TempFiles folder;
        folder.write(mid, "a\n");
        folder.write(QStringLiteral("a.mif"), mifHeader() + "Line 0 0 1 1\n");
        const FileSurvey found = surveyOf(folder.path(QStringLiteral("a.mif")), utf8());
        QCOMPARE(describe(found.causes), QStringList(cause));
        QCOMPARE(describe(found.kinds), QStringList(QStringLiteral("LINE 1/0")));
    }

    void noMidWanted()
    {
        const TempFiles folder;
        ImportOptions options = utf8();
        options.searchObjectDefs = false;
        options.searchPointDefs = false;
        folder.write(QStringLiteral("a.mif"), mifHeader() + "Line 0 0 1 1\n");
        const FileSurvey found = surveyOf(folder.path(QStringLiteral("a.mif")), options);
        QCOMPARE(describe(found.causes), QStringList());
        QCOMPARE(describe(found.kinds), QStringList(QStringLiteral("LINE 1/1")));
    }

    void everyCauseHasTexts()
    {
        QSet<QString> ids;
        for (int i = 0; i <= static_cast<int>(Cause::Encoding); ++i) {
            const FoundCause found{ static_cast<Cause>(i), {}, 0, QStringLiteral("X"), 7, {} };
            QVERIFY(causeText(found).endsWith(QLatin1Char('.')));
            QVERIFY(!causeText(found).contains(QLatin1Char('%')));
            // A command line is to be copied, and has nothing behind it.
            const QString remedy = remedyText(found);
            QVERIFY(remedy.endsWith(QLatin1Char('.')) || remedy.contains(QLatin1String(": ")));
            QVERIFY(!remedy.contains(QLatin1Char('%')));
            QCOMPARE(causeOfId(causeId(found.cause)), std::optional<Cause>(found.cause));
            ids.insert(causeId(found.cause));
        }
        QCOMPARE(ids.size(), static_cast<int>(Cause::Encoding) + 1);
    }

    void dxfKinds()
    {
        const QByteArray blocks =
            "0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n2\nP\n" + line + square + "0\nENDBLK\n0\nENDSEC\n";
        QByteArray content = drawing(line + square + polyline("1") + "0\nARC\n10\n0\n"
            + "0\nTEXT\n10\n0\n20\n0\n1\nA\n" + "0\nPOINT\n10\n0\n20\n0\n" + line);
        content.replace("0\nSECTION\n2\nENTITIES\n", blocks + "0\nSECTION\n2\nENTITIES\n");
        const FileSurvey found = survey("a.dxf", content, utf8());
        QCOMPARE(describe(found.kinds),
            QStringList({ QStringLiteral("ARC 1/0"), QStringLiteral("LINE 2/2"),
                QStringLiteral("LINE (в блоках) 1/0"), QStringLiteral("LWPOLYLINE 1/1"),
                QStringLiteral("LWPOLYLINE (в блоках) 1/0"), QStringLiteral("POINT 1/1"),
                QStringLiteral("POLYLINE 1/1"), QStringLiteral("TEXT 1/1") }));
    }

    void kindsBehindAnError()
    {
        // The error is in the object pass: what stands before it is read, the rest is not.
        ImportOptions options = utf8();
        options.searchPointDefs = false;
        const FileSurvey found =
            survey("a.dxf", drawing(line + "0\nLINE\n10\nx\n" + line + line), options);
        QCOMPARE(describe(found.kinds), QStringList(QStringLiteral("LINE 4/1")));
    }

    void nothingIsReadAfterAFailedPointPass()
    {
        const FileSurvey found =
            survey("a.dxf", drawing(line + "0\nPOINT\n10\nx\n20\n0\n"), utf8());
        QCOMPARE(describe(found.kinds),
            QStringList({ QStringLiteral("LINE 1/0"), QStringLiteral("POINT 1/0") }));
    }

    void encodings_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("codec");
        const QString russian = QStringLiteral("Участок № 12, ул. Лесная, Ёлкино");
        const auto encoded = [](const char* codec, const QString& text) {
            return QTextCodec::codecForName(codec)->fromUnicode(text);
        };
        QTest::newRow("ASCII") << QByteArray("plot 1") << QByteArray();
        QTest::newRow("nothing") << QByteArray() << QByteArray();
        QTest::newRow("UTF-8") << russian.toUtf8() << QByteArray("UTF-8");
        QTest::newRow("UTF-8 of four bytes")
            << QByteArray("\xF0\x9F\x98\x80") << QByteArray("UTF-8");
        QTest::newRow("Windows-1251")
            << encoded("Windows-1251", russian) << QByteArray("Windows-1251");
        QTest::newRow("Windows-1251, capitals")
            << encoded("Windows-1251", russian.toUpper()) << QByteArray("Windows-1251");
        QTest::newRow("IBM866") << encoded("IBM866", russian) << QByteArray("IBM866");
        QTest::newRow("IBM866, capitals")
            << encoded("IBM866", russian.toUpper()) << QByteArray("IBM866");
        QTest::newRow("UTF-8 cut off")
            << QStringLiteral("План").toUtf8().chopped(1) << QByteArray("Windows-1251");
        QTest::newRow("one letter among Latin ones") << QByteArray("Stra\xDF"
                                                                   "e M\xFCnchen")
                                                     << QByteArray("Windows-1252");
    }

    void encodings()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QByteArray, codec);
        EncodingGuess guess;
        const std::string_view view(bytes.constData(), static_cast<size_t>(bytes.size()));
        guess.add(view.substr(0, view.size() / 2));
        guess.add(view.substr(view.size() / 2));
        QCOMPARE(guess.codecName(), codec);
    }

    void encodingsOfWideCharacters_data()
    {
        QTest::addColumn<QByteArray>("start");
        QTest::addColumn<QByteArray>("mark");
        QTest::addColumn<QByteArray>("guess");
        const QByteArray none;
        const QByteArray wide("0\0\n\0L\0I\0N\0E\0", 12);
        QTest::newRow("UTF-8 mark") << QByteArray("\xEF\xBB\xBF 0") << QByteArray("UTF-8") << none;
        QTest::newRow("UTF-16LE") << wide << none << QByteArray("UTF-16LE");
        QTest::newRow("UTF-16BE") << QByteArray(1, '\0') + wide.chopped(1) << none
                                  << QByteArray("UTF-16BE");
        QTest::newRow("UTF-16LE, not a third Latin")
            << QByteArray("A\0B\0C\0\n\0D\0\x1F\x04\x20\x04\x21\x04", 16) << none
            << QByteArray("UTF-16LE");
        QTest::newRow("UTF-16LE mark")
            << "\xFF\xFE" + wide << QByteArray("UTF-16LE") << QByteArray("UTF-16LE");
        QTest::newRow("UTF-32LE mark")
            << QByteArray("\xFF\xFE\0\0000\0\0\0", 8) << QByteArray("UTF-32LE") << none;
        QTest::newRow("UTF-32BE mark")
            << QByteArray("\0\0\xFE\xFF\0\0\0000", 8) << QByteArray("UTF-32BE") << none;
        QTest::newRow("NUL bytes") << QByteArray(1024, '\0') << none << none;
        QTest::newRow("NUL bytes in a text")
            << "0\nSECTION\n" + QByteArray(400, '\0') + QByteArray(600, ' ') << none << none;
        QTest::newRow("small numbers in a binary file")
            << QByteArray("\1\0\2\0\7\0\3\0A\0B\0", 12) << none << none;
        QTest::newRow("nothing") << none << none << none;
    }

    void encodingsOfWideCharacters()
    {
        QFETCH(QByteArray, start);
        QFETCH(QByteArray, mark);
        QFETCH(QByteArray, guess);
        const std::string_view view(start.constData(), static_cast<size_t>(start.size()));
        QCOMPARE(codecOfMark(view), mark);
        QCOMPARE(utf16WithoutMark(view), guess);
    }

    void wideCharactersAreRead_data()
    {
        QTest::addColumn<QByteArray>("codec");
        for (const char* codec : { "UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE" })
            QTest::newRow(codec) << QByteArray(codec);
    }

    void wideCharactersAreRead()
    {
        // A mark is believed more than the chosen encoding.
        QFETCH(QByteArray, codec);
        const TempFiles folder;
        QTextCodec::ConverterState state;
        const QString text = QString::fromLatin1(mifHeader() + "Line 0 0 1 1\n");
        folder.write(QStringLiteral("a.mif"),
            QTextCodec::codecForName(codec)->fromUnicode(text.constData(), text.size(), &state));
        folder.write(QStringLiteral("a.mid"), "a\n");
        const FileSurvey found = surveyOf(folder.path(QStringLiteral("a.mif")), utf8());
        QCOMPARE(describe(found.causes), QStringList());
        QCOMPARE(describe(found.kinds), QStringList(QStringLiteral("LINE 1/1")));
        QCOMPARE(found.likelyEncoding, codec);
    }

    void midThatCannotBeOpened()
    {
        const TempFiles folder;
        folder.write(QStringLiteral("a.mif"), mifHeader() + "Line 0 0 1 1\n");
        QVERIFY(QDir(folder.path(QString())).mkdir(QStringLiteral("a.mid")));
        QCOMPARE(describe(surveyOf(folder.path(QStringLiteral("a.mif")), utf8()).causes),
            QStringList(QStringLiteral("mid-unreadable 0 0 []")));
    }

    void encodingMismatch_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QByteArray>("chosen");
        QTest::addColumn<bool>("matches");
        const QByteArray cyrillic =
            QTextCodec::codecForName("Windows-1251")->fromUnicode(QStringLiteral("Участок"));
        const QByteArray label = "0\nTEXT\n10\n0\n20\n0\n1\n" + cyrillic + '\n';
        const QByteArray layer = "0\nLINE\n8\n" + cyrillic + "\n10\n0\n20\n0\n11\n1\n21\n1\n";
        QTest::newRow("another one chosen") << drawing(label) << QByteArray("UTF-8") << false;
        QTest::newRow("IBM866 chosen") << drawing(label) << QByteArray("IBM866") << false;
        QTest::newRow("the right one chosen") << drawing(label) << QByteArray("CP1251") << true;
        // Nobody sees the name of a layer.
        QTest::newRow("no matter") << drawing(layer) << QByteArray("UTF-8") << true;
        QTest::newRow("byte-order mark")
            << "\xEF\xBB\xBF" + drawing(line) << QByteArray("Windows-1251") << true;
    }

    void encodingMismatch()
    {
        QFETCH(QByteArray, content);
        QFETCH(QByteArray, chosen);
        QFETCH(bool, matches);
        ImportOptions options = utf8();
        options.encoding = chosen;
        const FileSurvey found = survey("a.dxf", content, options);
        QCOMPARE(found.encodingMatches, matches);
        QCOMPARE(describe(found.causes),
            matches ? QStringList() : QStringList(QStringLiteral("encoding 0 0 [Windows-1251]")));
    }

    void spacesOfAMifFile()
    {
        const TempFiles folder;
        folder.write(QStringLiteral("a.mif"),
            mifHeader()
                + "Line\xC2\xA0"
                  "0 0 1\xC2\xA0"
                  "1\n");
        folder.write(QStringLiteral("a.mid"), "a\n");
        const FileSurvey found = surveyOf(folder.path(QStringLiteral("a.mif")), utf8());
        QCOMPARE(describe(found.causes), QStringList());
        QCOMPARE(describe(found.kinds), QStringList(QStringLiteral("LINE 1/1")));
    }

    void declaredEncoding()
    {
        const FileSurvey found = survey("a.dxf",
            QByteArray(drawing(line))
                .replace("HEADER\n", "HEADER\n9\n$DWGCODEPAGE\n3\nANSI_1251\n"),
            utf8());
        QCOMPARE(found.declaredEncoding, QStringLiteral("ANSI_1251"));
    }

    void conflicts()
    {
        const auto found = findPointConflicts(
            { polygon({}),
                polygon({ { { QStringLiteral("а"), 0, 0 }, { QStringLiteral("А"), 5, 0 },
                              { QStringLiteral("б"), 5, 5 }, { QStringLiteral("а"), 0, 0 } },
                    { { QStringLiteral("б"), 5, 5 } } }) },
            listedFindings);
        QCOMPARE(found.total, 1);
        QCOMPARE(found.listed.size(), 1);
        QCOMPARE(found.listed.first().object.object, 1);
        QCOMPARE(found.listed.first().def, QStringLiteral("а"));
        QCOMPARE(found.listed.first().places.listed, QVector<QPointF>({ { 0, 0 }, { 5, 0 } }));
    }

    /// In two threads the same is found, in the same order, as in one.
    void conflictsOfManyObjects()
    {
        QVector<DefPolygon> objects;
        for (int i = 0; i < 12000; ++i) {
            const QString name = QString::number(i);
            objects.append(polygon({ { { name, 0, 0 }, { i % 3 ? name + name : name, 5, 0 } } }));
        }
        for (const int most : { 0, 10, 1999, 2000, 2001, 3999, 4000, allFindings }) {
            const auto found = findPointConflicts(objects, most);
            const auto expected = findPointConflicts(objects, most, true);
            QCOMPARE(found.total, 4000);
            QCOMPARE(expected.total, 4000);
            QCOMPARE(found.listed.size(), std::min(most, 4000));
            QCOMPARE(expected.listed.size(), found.listed.size());
            for (int i = 0; i < found.listed.size(); ++i) {
                QCOMPARE(found.listed.at(i).object.object, 3 * i);
                QCOMPARE(expected.listed.at(i).object.object, 3 * i);
                QCOMPARE(found.listed.at(i).def, QString::number(3 * i));
                QCOMPARE(found.listed.at(i).places.total, 2);
            }
        }
    }

    void findingsAreBounded()
    {
        QVector<DefPolygon> objects;
        QVector<DefPoint> contour;
        for (int i = 0; i < 30; ++i) {
            contour.append({ QStringLiteral("а"), double(i), 0 });
            objects.append({ QStringLiteral("ЗУ"), {} });
        }
        objects.append(DefPolygon{ QString(1000, QLatin1Char('x')), { contour } });
        const auto conflicts = findPointConflicts(objects, 10);
        QCOMPARE(conflicts.total, 1);
        QCOMPARE(conflicts.listed.first().places.listed.size(), 10);
        QCOMPARE(conflicts.listed.first().places.total, 30);
        QCOMPARE(conflicts.listed.first().object.def.size(), 201);
        const auto duplicates = findDuplicateDefs(objects, 10);
        QCOMPARE(duplicates.total, 1);
        QCOMPARE(duplicates.listed.first().objects.listed.size(), 10);
        QCOMPARE(duplicates.listed.first().objects.unlisted(), 20);
        const auto incomplete = findIncompleteObjects(objects, {}, 10);
        QCOMPARE(incomplete.total, 30);
        QCOMPARE(incomplete.unlisted(), 20);
        QCOMPARE(findIncompleteObjects(objects, {}, allFindings).listed.size(), 30);
    }

    void degrees_data()
    {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::addColumn<double>("size");
        QTest::addColumn<bool>("found");
        QTest::newRow("longitude, latitude") << 37.6 << 55.7 << 0.01 << true;
        QTest::newRow("latitude, longitude") << 55.7 << 37.6 << 0.01 << true;
        QTest::newRow("behind the meridian") << -73.9 << 40.7 << 0.01 << true;
        QTest::newRow("metres of a plan of its own") << 37.6 << 55.7 << 20.0 << false;
        QTest::newRow("a local system") << 2213641.0 << 468214.0 << 0.01 << false;
        QTest::newRow("around nought") << 0.2 << 0.3 << 0.1 << false;
        QTest::newRow("beyond a pole") << 37.6 << 90.5 << 0.01 << false;
    }

    void degrees()
    {
        QFETCH(double, x);
        QFETCH(double, y);
        QFETCH(double, size);
        const DefPolygon object =
            polygon({ { { {}, x, y }, { {}, x + size, y }, { {}, x, y + size } } });
        QTEST(guessDegrees({ object }).has_value(), "found");
        // An object that an error left without vertices stands nowhere.
        const DefPolygon nowhere = polygon({ QVector<DefPoint>() });
        QTEST(guessDegrees({ nowhere, object, nowhere }).has_value(), "found");
        QVERIFY(!guessDegrees({ nowhere }));
    }

    void duplicates()
    {
        const auto found = findDuplicateDefs(
            { { QStringLiteral("ЗУ1"), {} }, { QStringLiteral("ЗУ2"), {} },
                { QStringLiteral("зу1"), {} }, { QString(), {} }, { QString(), {} } },
            listedFindings);
        QCOMPARE(found.total, 1);
        QCOMPARE(found.listed.first().def, QStringLiteral("ЗУ1"));
        QCOMPARE(found.listed.first().objects.listed, QVector<int>({ 0, 2 }));
    }

    void incomplete()
    {
        const DefPoint a{ {}, 0, 0 };
        const DefPoint b{ {}, 5, 0 };
        const DefPoint c{ {}, 5, 5 };
        const auto found = findIncompleteObjects(
            { polygon({}), polygon({ { a, b } }), polygon({ { a } }), polygon({ { a, b, c, a } }),
                polygon({ { a, b, c, a }, { a, b, a } }), polygon({ { a, b, a } }) },
            { Shape::Line, Shape::Line, Shape::Line, Shape::Area, Shape::Area, Shape::Line },
            listedFindings);
        QStringList texts;
        for (const IncompleteObject& object : found.listed) {
            texts.append(QStringLiteral("%1 %2 %3/%4")
                             .arg(object.object.object)
                             .arg(object.contour)
                             .arg(object.vertices)
                             .arg(object.needed));
        }
        QCOMPARE(texts,
            QStringList({ QStringLiteral("0 -1 0/2"), QStringLiteral("2 0 1/2"),
                QStringLiteral("4 1 2/3") }));
    }

    void axes_data()
    {
        QTest::addColumn<QPointF>("vertex");
        QTest::addColumn<int>("order");
        const auto row = [](const char* name, double x, double y, AxisOrder order) {
            QTest::newRow(name) << QPointF(x, y) << static_cast<int>(order);
        };
        row("local system, zone second", 451234.56, 2201234.56, AxisOrder::NorthingFirst);
        row("local system, zone first", 2201234.56, 451234.56, AxisOrder::EastingFirst);
        row("zone 17 second", 6144512, 17404638, AxisOrder::NorthingFirst);
        row("zone 17 first", 17404638, 6144512, AxisOrder::EastingFirst);
        row("zone 7 may be either", 7404638, 6144512, AxisOrder::Unknown);
        row("six digits before the northing", 404638, 6144512, AxisOrder::EastingFirst);
        row("small local coordinates", 100, 200, AxisOrder::Unknown);
        row("not a number", qQNaN(), 2201234, AxisOrder::Unknown);
    }

    void axes()
    {
        QFETCH(QPointF, vertex);
        QFETCH(int, order);
        const DefPoint point{ {}, vertex.x(), vertex.y() };
        QCOMPARE(static_cast<int>(guessAxisOrder({ polygon({ { point, point } }) })), order);
    }

    void axesByMostVertices()
    {
        const DefPoint usual{ {}, 451234, 2201234 };
        const DefPoint stray{ {}, 0, 0 };
        QVector<DefPoint> contour(9, usual);
        contour.append(stray);
        QCOMPARE(guessAxisOrder({ polygon({ contour }) }), AxisOrder::NorthingFirst);
        contour.append(stray);
        QCOMPARE(guessAxisOrder({ polygon({ contour }) }), AxisOrder::Unknown);
        QCOMPARE(guessAxisOrder({}), AxisOrder::Unknown);
    }

private:
    static FileSurvey survey(
        const char* name, const QByteArray& content, const ImportOptions& options)
    {
        const TempFiles folder;
        return surveyOf(folder.write(QLatin1String(name), content), options);
    }
};

QTEST_GUILESS_MAIN(TestSurvey)
#include "tst_survey.moc"
