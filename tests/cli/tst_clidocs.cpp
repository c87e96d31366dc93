#include "commandrun.h"
#include "support/tempfiles.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

namespace {

/// A command of the page and what it prints there.
struct Example {
    int line;
    QString command;
    QString output;
};

QList<Example> examplesOf(const QString& page)
{
    QList<Example> examples;
    bool inBlock = false;
    const QStringList lines = page.split(QLatin1Char('\n'));
    for (int i = 0; i < lines.size(); ++i) {
        const QString& line = lines.at(i);
        if (line.startsWith(QLatin1String("```")))
            inBlock = line == QLatin1String("```console");
        else if (inBlock && line.startsWith(QLatin1String("$ ")))
            examples.append({ i + 1, line.mid(2), QString() });
        else if (inBlock)
            examples.last().output += line + QLatin1Char('\n');
    }
    return examples;
}

/// What the first group of a pattern, whose ^ and $ are those of lines, matches in a page.
QStringList capturesIn(const QString& page, const QString& pattern)
{
    const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
    QStringList captures;
    for (auto match = expression.globalMatch(page); match.hasNext();)
        captures.append(match.next().captured(1));
    return captures;
}

/// The commands that a table of a page has in its first column.
QStringList commandsOfTable(const QString& page)
{
    return capturesIn(page, QStringLiteral("^\\| `(importgeometry [^`]*)`"));
}

/// The lines of shell that a page asks for, not those with their answers.
QString shellLinesOf(const QString& page)
{
    return capturesIn(page, QStringLiteral("^```sh\n([^`]*)^```$")).join(QString());
}

QString sourceFile(const char* name)
{
    return QDir(QStringLiteral(SOURCE_DIR)).filePath(QLatin1String(name));
}

QString textOf(const char* name)
{
    return QString::fromUtf8(contentOf(sourceFile(name)));
}

/// A folder that looks like a clone after a build, for its examples.
class Clone : public TempFiles {
public:
    Clone()
    {
        copy("tests/cli/data");
        copy("samples");
        QDir(path(QString())).mkpath(QStringLiteral("build/release/bin"));
        QFile::link(commandPath(), path(QStringLiteral("build/release/bin/importgeometry")));
    }

    /// Runs lines of shell in the clone, or in a folder of it.
    CommandRun run(const QString& script, const QString& folder = {}) const
    {
        return runShell(
            QStringLiteral("export LC_ALL=C.UTF-8; exec 2>&1; ") + script, path(folder));
    }
    /// The same with the command on the PATH.
    CommandRun runBuilt(const QString& script, const QString& folder) const
    {
        const QString programs = path(QStringLiteral("build/release/bin"));
        return run(QStringLiteral("PATH='%1':\"$PATH\"; ").arg(programs) + script, folder);
    }

    /// What stands outside the folder of the build and was not there at first.
    QStringList strayFiles() const
    {
        QStringList names;
        for (const QString& name : filesBelow(path(QString()))) {
            if (!m_copied.contains(name) && !name.startsWith(QLatin1String("build/")))
                names.append(name);
        }
        return names;
    }

private:
    static QStringList filesBelow(const QString& folder)
    {
        QStringList names;
        for (QDirIterator it(folder, QDir::Files, QDirIterator::Subdirectories); it.hasNext();)
            names.append(QDir(folder).relativeFilePath(it.next()));
        return names;
    }

    void copy(const char* folder)
    {
        const QString source = sourceFile(folder);
        QDir(path(QString())).mkpath(QLatin1String(folder));
        for (const QString& name : filesBelow(source)) {
            const QString file = QLatin1String(folder) + QLatin1Char('/') + name;
            write(file, contentOf(QDir(source).filePath(name)));
            m_copied.append(file);
        }
    }

    QStringList m_copied;
};

/// The long options that the help of a command names.
QStringList optionsOf(const char* command)
{
    const QString help =
        QString::fromUtf8(runCommand(words({ command, "--help" }), QDir::currentPath()).out);
    return capturesIn(help, QStringLiteral("^  (?:-\\w, )?(--[a-z-]+)"));
}

/// What bash offers for the last of the words.
QStringList completionsOf(const QString& commandLine, const QString& folder)
{
    const CommandRun run = runShell(
        QStringLiteral("source '%1'; importgeometry() { \"$CLI\" \"$@\"; }; COMP_WORDS=(%2); "
                       "COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _importgeometry; "
                       "printf '%s\\n' \"${COMPREPLY[@]}\"")
            .arg(sourceFile("completions/importgeometry"), commandLine),
        folder);
    return QString::fromUtf8(run.out).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

/// What fish offers at the end of a command line.
QStringList completionsOfFish(const QString& commandLine)
{
    const TempFiles home;
    const CommandRun run = runShell(
        QStringLiteral("export HOME='%1' LC_ALL=C.UTF-8 PATH=\"$(dirname \"$CLI\"):$PATH\"; "
                       "fish --no-config -c \"source '%2'; complete -C'%3'\"")
            .arg(home.path(QStringLiteral(".")), sourceFile("completions/importgeometry.fish"),
                commandLine),
        dataFile(""));
    QStringList offered;
    for (const QString& line :
        QString::fromUtf8(run.out).split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        offered.append(line.section(QLatin1Char('\t'), 0, 0));
    return offered;
}

/// What zsh offers at the end of a command line.
QStringList completionsOfZsh(const QString& commandLine)
{
    const TempFiles home;
    const CommandRun run =
        runShell(QStringLiteral("export LC_ALL=C.UTF-8; timeout 100 zsh -f '%1' '%2' '%3' '%4'")
                     .arg(sourceFile("tests/cli/completions.zsh"), sourceFile("completions"),
                         home.path(QStringLiteral(".")), commandLine),
            dataFile(""));
    return QString::fromUtf8(run.out).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

using Completer = QStringList (*)(const QString& commandLine);

struct Shell {
    const char* name;
    Completer completionsOf;
    bool needsTerminal;

    bool canRun() const
    {
        return !QStandardPaths::findExecutable(QLatin1String(name)).isEmpty()
            && (!needsTerminal || canOpenTerminal());
    }
};
constexpr Shell furtherShells[] = { { "fish", completionsOfFish, false },
    { "zsh", completionsOfZsh, true } };

} // namespace

class TestCliDocs : public QObject {
    Q_OBJECT

private slots:
    void examples_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QString>("folder");
        QTest::newRow("cli.md") << QStringLiteral("docs/cli.md")
                                << QStringLiteral("build/examples");
        QTest::newRow("cli.ru.md")
            << QStringLiteral("docs/cli.ru.md") << QStringLiteral("build/примеры");
        QTest::newRow("prepare.md") << QStringLiteral("docs/prepare.md") << QString();
    }

    void examples()
    {
        QFETCH(QString, page);
        QFETCH(QString, folder);
        const QString text = textOf(qPrintable(page));
        const Clone clone;
        if (!folder.isEmpty()) {
            // The page says how the command is found and where its files are.
            const CommandRun setUp =
                clone.run(shellLinesOf(text) + QStringLiteral("pwd; command -v importgeometry"));
            const QString end = QStringLiteral("/%1\n").arg(folder);
            const QString found = QString::fromUtf8(setUp.out);
            QVERIFY2(found.contains(end)
                    && found.endsWith(QLatin1String("/build/release/bin/importgeometry\n")),
                setUp.out.constData());
        }
        const QList<Example> examples = examplesOf(text);
        QVERIFY(examples.size() >= 3);
        for (const Example& example : examples) {
            const CommandRun run = clone.runBuilt(example.command, folder);
            QVERIFY2(QString::fromUtf8(run.out) == example.output,
                qPrintable(QStringLiteral("%1:%2 prints\n%3")
                               .arg(page)
                               .arg(example.line)
                               .arg(QString::fromUtf8(run.out))));
        }
        for (const QString& command : commandsOfTable(text))
            QCOMPARE(clone.runBuilt(command, folder).status, 0);
        QCOMPARE(clone.strayFiles(), QStringList());
    }

    /// The guide asks for its commands in the clone itself.
    void guide()
    {
        const Clone clone;
        const QString lines = shellLinesOf(textOf("docs/guide.ru.md"));
        QVERIFY(lines.contains(QLatin1String("importgeometry prepare ")));
        for (const QString& line : lines.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            const CommandRun run = clone.runBuilt(line, {});
            // A check finds something in one of the samples.
            QVERIFY2(
                run.status == 0 || (run.status == 3 && line.contains(QLatin1String(" check "))),
                run.out.constData());
        }
        QCOMPARE(clone.strayFiles(), QStringList());
    }

    void everyOptionIsDescribed_data()
    {
        QTest::addColumn<QString>("command");
        for (const char* command : { "convert", "check", "plan", "export", "prepare" })
            QTest::newRow(command) << QString::fromLatin1(command);
    }

    void everyOptionIsDescribed()
    {
        QFETCH(QString, command);
        const QStringList options = optionsOf(qPrintable(command));
        QVERIFY(options.size() >= 13);
        const QString page = textOf("docs/cli.md");
        const QString manual = textOf("docs/man/importgeometry.1").remove(QLatin1Char('\\'));
        const QStringList completions =
            completionsOf(QStringLiteral("importgeometry %1 --").arg(command), QDir::currentPath());
        for (const QString& option : options) {
            QVERIFY2(option == QLatin1String("--help") || option == QLatin1String("--output")
                    || page.contains(option),
                qPrintable(option));
            QVERIFY2(manual.contains(option), qPrintable(option));
            QVERIFY2(completions.contains(option), qPrintable(option));
        }
        QCOMPARE(completions.size(), options.size());
    }

    void otherShells_data()
    {
        QTest::addColumn<int>("shell");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QStringList>("first");
        const auto row = [](const char* line, std::initializer_list<const char*> first) {
            for (int i = 0; i < 2; ++i)
                QTest::newRow(qPrintable(QString::fromLatin1(furtherShells[i].name)
                    + QLatin1Char(' ') + QString::fromLatin1(line)))
                    << i << QString::fromLatin1(line) << words(first);
        };
        row("importgeometry pre", { "prepare" });
        row("importgeometry plan --si", { "--size" });
        row("importgeometry convert --encoding ",
            { "Default", "auto", "windows-1251", "UTF-8", "IBM866", "KOI8-R" });
        row("importgeometry prepare --level ", { "flatten", "repair" });
        row("importgeometry export --to ", { "csv", "geojson", "mif" });
        row("importgeometry check --explain ax", { "axes" });
    }

    void otherShells()
    {
        QFETCH(int, shell);
        QFETCH(QString, line);
        QFETCH(QStringList, first);
        if (!furtherShells[shell].canRun())
            QSKIP("the shell is not installed, or finds no terminal");
        QStringList offered = furtherShells[shell].completionsOf(line).mid(0, first.size());
        // Only encodings have an order of their own.
        if (!line.contains(QLatin1String("encoding")))
            offered.sort();
        QCOMPARE(offered, first);
    }

    void optionsInOtherShells_data()
    {
        QTest::addColumn<int>("shell");
        QTest::addColumn<QString>("command");
        for (int i = 0; i < 2; ++i) {
            for (const char* command : { "convert", "check", "plan", "export", "prepare" })
                QTest::newRow(qPrintable(QString::fromLatin1("%1 %2").arg(
                    QLatin1String(furtherShells[i].name), QLatin1String(command))))
                    << i << QString::fromLatin1(command);
        }
    }

    void optionsInOtherShells()
    {
        QFETCH(int, shell);
        QFETCH(QString, command);
        if (!furtherShells[shell].canRun())
            QSKIP("the shell is not installed, or finds no terminal");
        QStringList offered =
            furtherShells[shell].completionsOf(QStringLiteral("importgeometry %1 --").arg(command));
        QStringList expected = optionsOf(qPrintable(command));
        offered.sort();
        expected.sort();
        QCOMPARE(offered, expected);
    }

    void manualPage()
    {
        const CommandRun run =
            runShell(QStringLiteral("LC_ALL=C.UTF-8 man --warnings=w -E UTF-8 -l '%1'")
                         .arg(sourceFile("docs/man/importgeometry.1")),
                QDir::currentPath());
        QCOMPARE(run.err, QString());
        QCOMPARE(run.status, 0);
        QVERIFY(QString::fromUtf8(run.out).contains(QStringLiteral("КОДЫ ЗАВЕРШЕНИЯ")));
    }

    void everyCauseIsDescribed()
    {
        const CommandRun run =
            runCommand(words({ "check", "--explain", "all" }), QDir::currentPath());
        const QString manual = textOf("docs/man/importgeometry.1").remove(QLatin1Char('\\'));
        const QString page = textOf("docs/formats.ru.md");
        int causes = 0;
        for (const QString& line : QString::fromUtf8(run.out).split(QLatin1Char('\n'))) {
            if (line.isEmpty())
                continue;
            if (line.startsWith(QLatin1Char(' '))) {
                const QString text =
                    line.trimmed().remove(QRegularExpression(QStringLiteral("^Что делать: ")));
                QVERIFY2(page.contains(QLatin1Char(' ') + text + QStringLiteral(" |")),
                    qPrintable(text));
                QVERIFY2(manual.contains(text), qPrintable(text));
                continue;
            }
            ++causes;
            QVERIFY2(manual.contains(QStringLiteral(".B ") + line + QLatin1Char('\n')),
                qPrintable(line));
            QVERIFY2(page.contains(QStringLiteral("| `%1` |").arg(line)), qPrintable(line));
        }
        QVERIFY(causes > 30);
    }

    void completion_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QStringList>("completions");
        const auto row = [](const char* line, std::initializer_list<const char*> completions) {
            QTest::newRow(line) << QString::fromLatin1(line) << words(completions);
        };
        row("importgeometry c", { "convert", "check" });
        row("importgeometry plan --si", { "--size" });
        row("importgeometry convert --si", {});
        row("importgeometry convert --format ''", { "mif", "dxf" });
        row("importgeometry convert --search-points = o", { "on", "off" });
        row("importgeometry convert --encoding KOI8-R", { "KOI8-R" });
        row("importgeometry prepare --level ''", { "repair", "flatten" });
        row("importgeometry pr", { "prepare" });
        row("importgeometry check p", { "parcels.mif", "points.mif" });
        row("importgeometry check --points d", { "drawing.dxf" });
    }

    void completion()
    {
        QFETCH(QString, line);
        QFETCH(QStringList, completions);
        QStringList offered = completionsOf(line, dataFile(""));
        offered.sort();
        completions.sort();
        QCOMPARE(offered, completions);
    }
};

QTEST_GUILESS_MAIN(TestCliDocs)
#include "tst_clidocs.moc"
