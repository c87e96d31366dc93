#include "background.h"
#include "formexport.h"
#include "preparecopy.h"
#include "support/stricttest.h"
#include "support/tempfiles.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QProgressDialog>
#include <QPushButton>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <memory>

namespace {

QProgressDialog* shownProgress()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* progress = qobject_cast<QProgressDialog*>(widget);
        if (progress && progress->isVisible())
            return progress;
    }
    return nullptr;
}

} // namespace

Q_DECLARE_METATYPE(FormFile)

class TestBackground : public StrictTest {
    Q_OBJECT

private slots:
    void runsToTheEnd();
    void showsLongWork();
    void showsLabelAsItIs();
    void cancels();
    void endsWithTheProgram();
    void cancelledExportLeavesNothing_data();
    void cancelledExportLeavesNothing();
    void cancelledCopyLeavesNothing();
};

void TestBackground::runsToTheEnd()
{
    QThread* thread = nullptr;
    QVERIFY(runWithProgress(nullptr, QStringLiteral("работа"),
        [&](const std::atomic_bool&) { thread = QThread::currentThread(); }));
    QVERIFY(thread != nullptr && thread != QThread::currentThread());
}

void TestBackground::showsLongWork()
{
    std::atomic_bool isSeen{ false };
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [&] {
        const QProgressDialog* progress = shownProgress();
        if (progress && progress->labelText() == QStringLiteral("долгая работа"))
            isSeen = true;
    });
    watch.start(10);
    QVERIFY(runWithProgress(nullptr, QStringLiteral("долгая работа"), [&](const std::atomic_bool&) {
        while (!isSeen)
            QThread::msleep(5);
    }));
    QVERIFY(!shownProgress());
}

void TestBackground::showsLabelAsItIs()
{
    std::atomic_bool isSeen{ false };
    bool isPlain = false;
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [&] {
        const QProgressDialog* progress = shownProgress();
        if (!progress)
            return;
        for (const QLabel* label : progress->findChildren<QLabel*>()) {
            isPlain = label->textFormat() == Qt::PlainText
                && label->text() == QStringLiteral("<b>a.dxf</b>") && label->isVisible();
        }
        isSeen = true;
    });
    watch.start(10);
    QVERIFY(runWithProgress(nullptr, QStringLiteral("<b>a.dxf</b>"), [&](const std::atomic_bool&) {
        while (!isSeen)
            QThread::msleep(5);
    }));
    QVERIFY(isPlain);
}

void TestBackground::cancels()
{
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [] {
        if (QProgressDialog* progress = shownProgress())
            progress->findChild<QPushButton*>()->click();
    });
    watch.start(10);
    auto isTold = std::make_shared<std::atomic_bool>(false);
    QVERIFY(!runWithProgress(
        nullptr, QStringLiteral("работа"), [isTold](const std::atomic_bool& cancelled) {
            while (!cancelled)
                QThread::msleep(5);
            *isTold = true;
        }));
    watch.stop();
    finishBackgroundWork();
    QVERIFY(*isTold);
}

void TestBackground::endsWithTheProgram()
{
    // An end of the program ends all loops, and the work has not been done.
    QTimer::singleShot(0, qApp, [] { QApplication::exit(); });
    QVERIFY(
        !runWithProgress(nullptr, QStringLiteral("работа"), [](const std::atomic_bool& cancelled) {
            while (!cancelled)
                QThread::msleep(5);
        }));
    finishBackgroundWork();
}

void TestBackground::cancelledExportLeavesNothing_data()
{
    QTest::addColumn<FormFile>("form");
    QTest::newRow("XML") << FormFile::Xml;
    QTest::newRow("CSV") << FormFile::Csv;
    QTest::newRow("MIF") << FormFile::Mif;
    QTest::newRow("PDF") << FormFile::Pdf;
}

void TestBackground::cancelledExportLeavesNothing()
{
    QFETCH(FormFile, form);
    const TempFiles files;
    FormExport task;
    task.fileName = files.path(QStringLiteral("a.out"));
    task.form = form;
    const std::atomic_bool cancelled{ true };
    QVERIFY(!writeFormFile(task, cancelled).isEmpty());
    QVERIFY(QDir(files.path(QString())).isEmpty());
    const std::atomic_bool goesOn{ false };
    QCOMPARE(writeFormFile(task, goesOn), QString());
    QVERIFY(QFile::exists(task.fileName));
}

void TestBackground::cancelledCopyLeavesNothing()
{
    const TempFiles files;
    const QString file = files.path(QStringLiteral("survey.dxf"));
    QVERIFY(QFile::copy(QStringLiteral(SAMPLES_DIR "/survey.dxf"), file));
    const std::atomic_bool cancelled{ true };
    QVERIFY(!prepareCopy(file, false, cancelled).error.isEmpty());
    QCOMPARE(QDir(files.path(QString())).entryList(QDir::Files).size(), 1);

    // No copy takes the place of another one.
    const std::atomic_bool goesOn{ false };
    const PreparedCopy first = prepareCopy(file, false, goesOn);
    const PreparedCopy second = prepareCopy(file, false, goesOn);
    QCOMPARE(first.error, QString());
    QCOMPARE(QFileInfo(first.fileName).fileName(), QStringLiteral("survey-готов.dxf"));
    QCOMPARE(QFileInfo(second.fileName).fileName(), QStringLiteral("survey-готов-2.dxf"));
    QVERIFY(first.changes.join(QLatin1Char(' ')).contains(QStringLiteral("999")));
    QVERIFY(!prepareCopy(files.path(QStringLiteral("none.dxf")), false, goesOn).error.isEmpty());
    QVERIFY(!prepareCopy(files.path(QStringLiteral("a.txt")), false, goesOn).error.isEmpty());
}

QTEST_MAIN(TestBackground)
#include "tst_background.moc"
