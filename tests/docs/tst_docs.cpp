#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

namespace {

QDir root()
{
    return QDir(QStringLiteral(SOURCE_DIR));
}

QString contents(const QString& path)
{
    QFile file(root().filePath(path));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qUtf8Printable(path));
    return QString::fromUtf8(file.readAll());
}

QStringList pages()
{
    QStringList result = root().entryList({ QStringLiteral("*.md") }, QDir::Files);
    const QDir docs(root().filePath(QStringLiteral("docs")));
    for (const QString& name : docs.entryList({ QStringLiteral("*.md") }, QDir::Files))
        result.append(QStringLiteral("docs/") + name);
    result.append(QStringLiteral("fuzz/README.md"));
    return result;
}

/// The names of all targets, and of their files, that the CMake files of the tree define.
QSet<QString> targets()
{
    static const QRegularExpression definition(QStringLiteral(
        R"((?:(?:add_executable|add_library|importgeometry_\w+)\(|OUTPUT_NAME)\s*([\w-]+))"));
    QSet<QString> result;
    const QStringList folders{ QStringLiteral("src"), QStringLiteral("apps"),
        QStringLiteral("tests"), QStringLiteral("bench"), QStringLiteral("fuzz") };
    for (const QString& folder : folders) {
        QDirIterator it(root().filePath(folder), { QStringLiteral("CMakeLists.txt") }, QDir::Files,
            QDirIterator::Subdirectories);
        while (it.hasNext()) {
            auto matches = definition.globalMatch(contents(it.next()));
            while (matches.hasNext())
                result.insert(matches.next().captured(1));
        }
    }
    return result;
}

/// The names of the presets of one kind, for example "testPresets".
QSet<QString> presets(const QString& kind)
{
    const QByteArray json = contents(QStringLiteral("CMakePresets.json")).toUtf8();
    QSet<QString> result;
    for (const auto& preset : QJsonDocument::fromJson(json).object().value(kind).toArray())
        result.insert(preset.toObject().value(QStringLiteral("name")).toString());
    return result;
}

/// Adds a row for each different match of `pattern` in each page, with the page and the captures.
void addReferences(const QString& pattern)
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QStringList>("parts");
    const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
    QSet<QString> seen;
    for (const QString& page : pages()) {
        auto matches = expression.globalMatch(contents(page));
        while (matches.hasNext()) {
            const QStringList parts = matches.next().capturedTexts().mid(1);
            const QString name = page + QStringLiteral(": ") + parts.join(QLatin1Char(' '));
            if (seen.contains(name))
                continue;
            seen.insert(name);
            QTest::newRow(qUtf8Printable(name)) << page << parts;
        }
    }
    QVERIFY2(!seen.isEmpty(), "no page holds what this test is about");
}

/// The first part of the current row.
QString reference()
{
    return (*static_cast<QStringList*>(QTest::qData("parts", qMetaTypeId<QStringList>()))).value(0);
}

/// `text` as a message stands in docs/formats.md.
QString asInDocs(QString text)
{
    return text.replace(QLatin1String("%1"), QStringLiteral("…"));
}

} // namespace

class TestDocs : public QObject {
    Q_OBJECT

private slots:
    void links_data() { addReferences(QStringLiteral(R"(\[[^]\n]+\]\(([^)#\s]+)[^)\n]*\))")); }
    void links();
    void paths_data();
    void paths();
    void rootFiles_data();
    void rootFiles() { QVERIFY(root().exists(reference())); }
    void scripts_data();
    void scripts();
    void presetNames_data();
    void presetNames();
    void buildResults_data();
    void buildResults();
    void testNames_data();
    void testNames() { QVERIFY(targets().contains(reference())); }
    void readerMessages_data();
    void readerMessages();
    void documentedMessages();
    void guideNamesMessages_data() { readerMessages_data(); }
    void guideNamesMessages();
    void guideNamesCauses_data();
    void guideNamesCauses();
};

void TestDocs::links()
{
    QFETCH(QString, page);
    if (reference().startsWith(QLatin1String("http")))
        return;
    const QDir folder = QFileInfo(root().filePath(page)).dir();
    QVERIFY(folder.exists(reference()));
}

void TestDocs::paths_data()
{
    addReferences(QStringLiteral(
        R"((?<![\w/.…-])((?:\.ci|apps|bench|cmake|docs|fuzz|samples|scripts|src|tests)/(?:[\w./-]*[\w/])?))"));
}

void TestDocs::paths()
{
    QVERIFY(root().exists(reference()));
}

void TestDocs::rootFiles_data()
{
    addReferences(
        QStringLiteral(R"(`((?:[A-Z]\w+\.(?:md|txt|json)|\.clang-\w+|\.editorconfig))`)"));
}

void TestDocs::scripts_data()
{
    addReferences(QStringLiteral(R"((?<![\w/])(scripts/[\w-]+\.sh|\.ci/\w+))"));
}

void TestDocs::scripts()
{
    QVERIFY(QFileInfo(root().filePath(reference())).isExecutable());
}

void TestDocs::presetNames_data()
{
    addReferences(QStringLiteral(R"((cmake --build|cmake|ctest) --preset[ =]([\w-]+))"));
}

void TestDocs::presetNames()
{
    static const QMap<QString, QString> kinds{
        { QStringLiteral("cmake"), QStringLiteral("configurePresets") },
        { QStringLiteral("cmake --build"), QStringLiteral("buildPresets") },
        { QStringLiteral("ctest"), QStringLiteral("testPresets") },
    };
    QFETCH(QStringList, parts);
    QVERIFY(presets(kinds.value(parts.at(0))).contains(parts.at(1)));
}

void TestDocs::buildResults_data()
{
    addReferences(QStringLiteral(R"(build/([\w-]+)/(bin|lib)/(?:lib|fuzz_|replay_)?([\w-]+))"));
}

void TestDocs::buildResults()
{
    QFETCH(QStringList, parts);
    QVERIFY(presets(QStringLiteral("configurePresets")).contains(parts.at(0)));
    QVERIFY(targets().contains(parts.at(2)));
}

void TestDocs::testNames_data()
{
    addReferences(QStringLiteral(R"((?<![\w/])(tst_\w+))"));
}

void TestDocs::readerMessages_data()
{
    QTest::addColumn<QString>("message");
    static const QRegularExpression message(QStringLiteral("\"(Ошибка[^\"]*)\""));
    const QDir readers(root().filePath(QStringLiteral("src/import")));
    for (const QString& name : readers.entryList({ QStringLiteral("*.cpp") }, QDir::Files)) {
        auto matches = message.globalMatch(contents(QStringLiteral("src/import/") + name));
        while (matches.hasNext()) {
            const QString text = asInDocs(matches.next().captured(1));
            QTest::addRow("%s: %s", qUtf8Printable(name), qUtf8Printable(text)) << text;
        }
    }
}

void TestDocs::readerMessages()
{
    QFETCH(QString, message);
    const QString row = QStringLiteral("\n| ") + message + QStringLiteral(" |");
    QVERIFY(contents(QStringLiteral("docs/formats.md")).contains(row));
}

void TestDocs::documentedMessages()
{
    static const QRegularExpression row(QStringLiteral("\n\\| (Ошибка[^|]*) \\|"));
    QString sources;
    const QDir readers(root().filePath(QStringLiteral("src/import")));
    for (const QString& name : readers.entryList({ QStringLiteral("*.cpp") }, QDir::Files))
        sources += asInDocs(contents(QStringLiteral("src/import/") + name));

    int count = 0;
    auto matches = row.globalMatch(contents(QStringLiteral("docs/formats.md")));
    for (; matches.hasNext(); ++count) {
        const QString text = matches.next().captured(1);
        QVERIFY2(
            sources.contains(QLatin1Char('"') + text + QLatin1Char('"')), qUtf8Printable(text));
    }
    // Ten texts of the MIF reader, two of the DXF reader, and the driver's own one.
    QCOMPARE(count, 13);
}

void TestDocs::guideNamesMessages()
{
    QFETCH(QString, message);
    const QString row = QStringLiteral("\n| ") + message + QStringLiteral(" |");
    QVERIFY(contents(QStringLiteral("docs/guide.ru.md")).contains(row));
}

void TestDocs::guideNamesCauses_data()
{
    QTest::addColumn<QString>("cause");
    static const QRegularExpression row(QStringLiteral("\\{ Cause::\\w+,\\s*\"([a-z-]+)\""));
    auto matches = row.globalMatch(contents(QStringLiteral("libs/survey/causes.cpp")));
    while (matches.hasNext()) {
        const QString cause = matches.next().captured(1);
        QTest::newRow(qUtf8Printable(cause)) << cause;
    }
}

void TestDocs::guideNamesCauses()
{
    QFETCH(QString, cause);
    const QString row = QStringLiteral("\n| `%1` | ").arg(cause);
    QCOMPARE(contents(QStringLiteral("docs/guide.ru.md")).count(row), 1);
}

QTEST_APPLESS_MAIN(TestDocs)
#include "tst_docs.moc"
