#include "import/mifimport.h"

#include "literal/literalmifimport.h"
#include "support/importing.h"
#include "support/random.h"

#include <QtTest>

namespace {

/// Writes MIF/MID pairs: mostly sound ones, with the liberties that the format allows.
class PairWriter {
public:
    explicit PairWriter(Random& random, int objects)
        : m_random(random)
    {
        // Among many points an undefined one leaves their order open, and with it the outcome.
        if (objects <= 12)
            m_oddNumbers.append(QStringLiteral("nan"));
        header();
        for (int i = m_random.below(objects + 1); i > 0; --i)
            object();
    }

    QStringList mif;
    QStringList mid;

private:
    QString space() { return m_random.oneIn(6) ? m_random.pick(m_spaces) : QStringLiteral(" "); }

    QString word(const char* text)
    {
        QString result = QString::fromLatin1(text);
        if (m_random.oneIn(3))
            result = result.toUpper();
        else if (m_random.oneIn(3))
            result = result.toLower();
        return result;
    }

    QString coordinate()
    {
        if (m_random.oneIn(60))
            return m_random.pick(m_oddNumbers);
        // Steps of half the tolerance and of powers of two make neighbours and ties frequent.
        const double value =
            m_random.oneIn(2) ? m_random.below(12) * 0.005 : m_random.below(40) / 128.0;
        return QString::number(
            m_random.oneIn(3) ? value : m_random.below(6), m_random.oneIn(3) ? 'f' : 'g', 7);
    }

    QString place() { return coordinate() + space() + coordinate(); }

    QString indented(const QString& text)
    {
        return m_random.oneIn(4) ? space() + text + space() : text;
    }

    QString number(int value) { return QString::number(value); }

    void header()
    {
        mif = QStringList{ word("Version") + space() + QStringLiteral("300"),
            word("Charset") + space() + QStringLiteral("\"Neutral\""),
            word("Delimiter") + space() + m_random.pick(m_delimiters) };
        if (m_random.oneIn(3))
            mif.append(QStringList{ QStringLiteral("Columns 1"), QStringLiteral("  a Char(9)") });
        mif.append(indented(word("Data")));
    }

    void name()
    {
        QString text = m_random.pick(m_names);
        if (m_random.oneIn(2))
            text = QLatin1Char('"') + text + QLatin1Char('"');
        const QString row = indented(text) + m_random.pick(m_rests);
        mid.append(row.trimmed().isEmpty() ? QStringLiteral(",") : row);
    }

    void contour(int count)
    {
        for (; count > 0; --count)
            mif.append(indented(place()));
    }

    void counted(int least)
    {
        const int count = least + m_random.below(4);
        mif.append(indented(number(count)));
        contour(count);
    }

    void pline()
    {
        if (m_random.oneIn(3)) {
            const int sections = 2 + m_random.below(2);
            mif.append(word("Pline") + space() + word("Multiple") + space() + number(sections));
            for (int i = 0; i < sections; ++i)
                counted(2);
            return;
        }
        const int count = 2 + m_random.below(4);
        mif.append(indented(word("Pline") + space() + number(count)));
        contour(count);
    }

    void region()
    {
        const int rings = m_random.below(3);
        mif.append(indented(word("Region") + space() + number(rings)));
        for (int i = 0; i < rings; ++i)
            counted(3);
    }

    void object()
    {
        switch (m_random.below(8)) {
        case 0:
        case 1:
            mif.append(indented(word("Point") + space() + place()));
            break;
        case 2:
            mif.append(indented(word("Line") + space() + place() + space() + place()));
            break;
        case 3:
        case 4:
            pline();
            break;
        case 5:
        case 6:
            region();
            break;
        default:
            mif.append(word(m_random.pick(m_skipped)) + space() + place());
        }
        if (m_random.oneIn(3))
            mif.append(m_random.pick(m_attributes));
        name();
    }

    Random& m_random;

    const QStringList m_spaces{ QStringLiteral("  "), QStringLiteral("\t"), QStringLiteral(" \t "),
        QStringLiteral("\u00A0"), QStringLiteral("\u2003") };
    QStringList m_oddNumbers{ QStringLiteral("inf"), QStringLiteral("-inf"),
        QStringLiteral("1e300"), QStringLiteral("-0"), QStringLiteral("-0.0"), QStringLiteral("+1"),
        QStringLiteral("1e-300"), QStringLiteral("5e-324"), QStringLiteral(".5"),
        QStringLiteral("2.") };
    const QStringList m_delimiters{ QStringLiteral("\",\""), QStringLiteral("\",\""),
        QStringLiteral("\";\""), QStringLiteral(";"), QStringLiteral("\"\""),
        QStringLiteral("\"н\"") };
    const QStringList m_names{ QString(), QStringLiteral("A"), QStringLiteral("н1"),
        QStringLiteral("50:12 ЗУ7"), QStringLiteral(" x "), QStringLiteral("B;C,D") };
    const QStringList m_rests{ QString(), QStringLiteral(",1"), QStringLiteral(";2"),
        QStringLiteral(" ,\"3\""), QStringLiteral("\"") };
    const QStringList m_attributes{ QString(), QStringLiteral("    Pen (1,2,0)"),
        QStringLiteral("    Brush (2,3)"), QStringLiteral("Smooth"), QStringLiteral(" \t") };
    const std::vector<const char*> m_skipped{ "None", "Arc", "Text", "Rect", "RoundRect", "Ellipse",
        "Multipoint" };
};

/// Does to a file what bad disks, editors and other programs do.
void damage(Random& random, QStringList& lines)
{
    static const QStringList junk{ QString(), QStringLiteral("abc"), QStringLiteral("1 2"),
        QStringLiteral("3"), QStringLiteral("2000000000"), QStringLiteral("-1"),
        QStringLiteral("Region 1"), QStringLiteral("Pline"), QStringLiteral("Pline Multıple 2"),
        QStringLiteral("Lıne 1 2 3 4"), QStringLiteral("ELLIPſE"), QStringLiteral("Collection 3"),
        QStringLiteral("Data"), QStringLiteral("1 2 3"), QStringLiteral("nan nan"),
        QStringLiteral("\"\""), QStringLiteral(",") };
    static const QString characters = QStringLiteral("0123456789.-+eE \t\",;xп\u00A0\r\n")
        + QChar(0) + QChar(0x2028) + QChar(0xFEFF);
    if (lines.isEmpty())
        return;
    const int at = random.below(lines.size());
    switch (random.below(7)) {
    case 0:
        lines.removeAt(at);
        break;
    case 1:
        lines.insert(at, random.pick(junk));
        break;
    case 2:
        lines[at] = random.pick(junk);
        break;
    case 3:
        lines.insert(at, lines.at(random.below(lines.size())));
        break;
    case 4:
        lines = lines.mid(0, at);
        break;
    default:
        lines[at].insert(random.below(lines[at].size() + 1), random.pick(characters));
    }
}

QByteArray fileOf(Random& random, const QStringList& lines, const QByteArray& encoding)
{
    QString text = lines.join(random.oneIn(4) ? QStringLiteral("\r\n") : QStringLiteral("\n"));
    if (!random.oneIn(4))
        text += QLatin1Char('\n');
    const QByteArray bytes = QTextCodec::codecForName(encoding)->fromUnicode(text);
    return random.oneIn(12) ? "\xEF\xBB\xBF" + bytes : bytes;
}

ImportOptions anyOptions(Random& random)
{
    ImportOptions options = numbered();
    options.searchPointDefs = random.oneIn(2);
    options.searchObjectDefs = random.oneIn(2);
    options.swapXY = random.oneIn(4);
    options.pointPref = random.pick(QStringList{ QString(), QStringLiteral("%1") });
    options.objectPref = random.pick(QStringList{ QStringLiteral(":ЗУ"), QStringLiteral("%2") });
    options.pointStartNum = random.below(3) * 99;
    options.objectStartNum = random.below(3);
    options.encoding = random.pick(
        QByteArrayList{ "UTF-8", "UTF-8", "Windows-1251", "IBM866", "KOI8-R", "UTF-16" });
    return options;
}

} // namespace

/// The reader against the plain one over generated pairs, sound and damaged.
class TestMifRandom : public QObject {
    Q_OBJECT

private slots:
    void likeThePlainReader_data();
    void likeThePlainReader();

private:
    void writePair(Random& random, const QString& name, const ImportOptions& options, int objects,
        int damages);

    TempFiles m_files;
};

void TestMifRandom::writePair(
    Random& random, const QString& name, const ImportOptions& options, int objects, int damages)
{
    PairWriter pair(random, objects);
    for (; damages > 0; --damages)
        damage(random, random.oneIn(5) ? pair.mid : pair.mif);
    m_files.write(name + QStringLiteral(".mif"), fileOf(random, pair.mif, options.encoding));
    m_files.write(name + QStringLiteral(".mid"), fileOf(random, pair.mid, options.encoding));
}

void TestMifRandom::likeThePlainReader_data()
{
    QTest::addColumn<int>("rounds");
    QTest::addColumn<int>("objects");
    QTest::addColumn<int>("damages");
    QTest::newRow("sound") << 3000 << 12 << 0;
    QTest::newRow("damaged") << 8000 << 6 << 1;
    QTest::newRow("badly damaged") << 4000 << 8 << 6;
    QTest::newRow("large") << 150 << 600 << 0;
}

void TestMifRandom::likeThePlainReader()
{
    QFETCH(int, rounds);
    QFETCH(int, objects);
    QFETCH(int, damages);
    Random random(14);
    const QString plan = QStringLiteral("plan.mif");
    int sound = 0;
    int failed = 0;
    for (int round = 0; round < rounds; ++round) {
        const ImportOptions options = anyOptions(random);
        writePair(random, QStringLiteral("plan"), options, objects, random.below(damages + 1));
        writePair(random, QStringLiteral("pts"), options, objects, random.oneIn(4) ? damages : 0);
        const QString points = random.oneIn(2) ? QStringLiteral("pts.mif") : QString();

        MifImport importer;
        literal::MifImport plain;
        prepare(importer, options, m_files, plan, points);
        prepare(plain, options, m_files, plan, points);
        const QStringList outcome = outcomeOf(importer, m_files);
        const QStringList expected = outcomeOf(plain, m_files);
        if (outcome != expected)
            qWarning("round %d", round);
        QCOMPARE(outcome, expected);
        QCOMPARE(importer.pointStartNum, plain.pointStartNum);
        QCOMPARE(importer.objectStartNum, plain.objectStartNum);
        (outcome.first() == QStringLiteral("true") ? sound : failed) += outcome.size() > 1 ? 1 : 0;
    }
    // What is compared must not be all failures, nor damage without effect.
    QVERIFY(sound > rounds / 10);
    QVERIFY(damages == 0 || failed > rounds / 20);
}

QTEST_GUILESS_MAIN(TestMifRandom)
#include "tst_mifrandom.moc"
