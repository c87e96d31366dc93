// The window of the guide, with a guide of its own.

#include "guidewindow.h"
#include "support/stricttest.h"
#include "support/tempfiles.h"

#include <QAction>
#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>

#include <memory>

namespace {

QImage pictureOf(int width, int height)
{
    QImage picture(width, height, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    return picture;
}

} // namespace

class TestGuide : public StrictTest {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void showsPictures_data();
    void showsPictures();
    void goesThroughPages();
    void findsForwardsAndBackwards();
    void findsNothingOfNothing();
    void clearsFormerAnswer();
    void keysReachSearch();

private:
    void trigger(const char* text);
    QTextBrowser& page() const { return *m_guide->findChild<QTextBrowser*>(); }
    QLineEdit& search() const { return *m_guide->findChild<QLineEdit*>(); }
    QString answer() const
    {
        return m_guide->findChild<QLabel*>(QStringLiteral("guideFound"))->text();
    }
    int foundAt() const { return page().textCursor().selectionStart(); }

    std::unique_ptr<TempFiles> m_files;
    std::unique_ptr<GuideWindow> m_guide;
};

void TestGuide::init()
{
    m_files = std::make_unique<TempFiles>();
    QVERIFY(pictureOf(1600, 400).save(m_files->path(QStringLiteral("wide.png"))));
    QVERIFY(pictureOf(800, 50).save(m_files->path(QStringLiteral("page.png"))));
    QVERIFY(pictureOf(200, 100).save(m_files->path(QStringLiteral("narrow.png"))));
    m_files->write(QStringLiteral("second.md"), "# Вторая страница\n\nТекст.\n");
    m_guide = std::make_unique<GuideWindow>(m_files->write(QStringLiteral("first.md"),
        "# Первая страница\n\nСлово, потом другое слово.\n\n![](wide.png)\n\n![](page.png)\n\n"
        "![](narrow.png)\n\n[дальше](second.md)\n"));
    // Its button fades in and out, which Qt does not end with the window.
    search().setClearButtonEnabled(false);
    m_guide->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_guide.get(), 60000));
}

void TestGuide::cleanup()
{
    m_guide.reset();
    m_files.reset();
}

void TestGuide::trigger(const char* text)
{
    const auto actions = m_guide->findChildren<QAction*>();
    for (QAction* action : actions) {
        if (action->text() == QString::fromUtf8(text))
            return action->trigger();
    }
    qFatal("No button %s", text);
}

void TestGuide::showsPictures_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QSize>("size");
    QTest::newRow("wide") << QStringLiteral("wide.png") << QSize(800, 200);
    QTest::newRow("as wide as a page") << QStringLiteral("page.png") << QSize(800, 50);
    QTest::newRow("narrow") << QStringLiteral("narrow.png") << QSize(200, 100);
}

void TestGuide::showsPictures()
{
    QFETCH(QString, name);
    const auto picture =
        page().document()->resource(QTextDocument::ImageResource, QUrl(name)).value<QImage>();
    QTEST(picture.size() / picture.devicePixelRatio(), "size");
    QCOMPARE(picture.pixelColor(20, 20), QColor(Qt::blue));
}

void TestGuide::goesThroughPages()
{
    const QString first = QStringLiteral("Первая страница");
    const QString second = QStringLiteral("Вторая страница");
    QCOMPARE(m_guide->windowTitle(), first);
    page().setSource(QUrl(QStringLiteral("second.md")));
    QCOMPARE(m_guide->windowTitle(), second);
    trigger("Назад");
    QCOMPARE(m_guide->windowTitle(), first);
    trigger("Вперёд");
    QCOMPARE(m_guide->windowTitle(), second);
    QCOMPARE(page().document()->firstBlock().text(), second);
    trigger("В начало");
    QCOMPARE(m_guide->windowTitle(), first);
}

void TestGuide::findsForwardsAndBackwards()
{
    const QString text = page().document()->toPlainText();
    const int one = text.indexOf(QStringLiteral("Слово"));
    const int other = text.indexOf(QStringLiteral("слово"));
    QVERIFY(one > 0 && other > one);
    search().setText(QStringLiteral("слово"));
    trigger("Дальше");
    QCOMPARE(foundAt(), one);
    trigger("Дальше");
    QCOMPARE(foundAt(), other);
    // Round the end, and round the start.
    trigger("Дальше");
    QCOMPARE(foundAt(), one);
    trigger("Раньше");
    QCOMPARE(foundAt(), other);
    trigger("Раньше");
    QCOMPARE(foundAt(), one);
    QCOMPARE(answer(), QString());
}

void TestGuide::findsNothingOfNothing()
{
    search().setText(QStringLiteral("другое"));
    trigger("Дальше");
    const int place = foundAt();
    search().clear();
    for (const char* button : { "Дальше", "Раньше" }) {
        trigger(button);
        QCOMPARE(foundAt(), place);
        QCOMPARE(answer(), QString());
    }
}

void TestGuide::clearsFormerAnswer()
{
    search().setText(QStringLiteral("другое"));
    trigger("Дальше");
    const int place = foundAt();
    search().setText(QStringLiteral("третье"));
    trigger("Дальше");
    QCOMPARE(answer().trimmed(), QStringLiteral("Не найдено"));
    // What was found before stays in sight.
    QCOMPARE(foundAt(), place);
    search().setText(QStringLiteral("слово"));
    QCOMPARE(answer(), QString());
}

void TestGuide::keysReachSearch()
{
    m_guide->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_guide.get(), 60000));
    QVERIFY(page().hasFocus());
    search().setText(QStringLiteral("слово"));
    QTest::keyClick(m_guide.get(), Qt::Key_F, Qt::ControlModifier);
    QVERIFY(search().hasFocus());
    QCOMPARE(search().selectedText(), QStringLiteral("слово"));
    // Typing takes the place of the older word.
    QTest::keyClick(&search(), Qt::Key_X);
    QCOMPARE(search().text(), QStringLiteral("x"));
    QTest::keyClick(m_guide.get(), Qt::Key_Escape);
    QVERIFY(!m_guide->isVisible());
}

QTEST_MAIN(TestGuide)
#include "tst_guide.moc"
