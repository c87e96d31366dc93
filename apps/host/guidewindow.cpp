#include "guidewindow.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>
#include <QTextBlock>
#include <QTextBrowser>
#include <QToolBar>
#include <QVBoxLayout>

namespace {

constexpr char guideName[] = "guide.ru.md";
constexpr int pictureWidth = 800; ///< wider ones are reduced to it
constexpr QSize usualSize(900, 760);
constexpr int margin = 16;

/// Shows pictures no wider than a page, and as sharp as the screen has them.
class GuideBrowser : public QTextBrowser {
public:
    QVariant loadResource(int type, const QUrl& name) override
    {
        if (type != QTextDocument::ImageResource)
            return QTextBrowser::loadResource(type, name);
        QImage picture(source().resolved(name).toLocalFile());
        if (picture.width() <= pictureWidth)
            return picture;
        const double ratio = devicePixelRatioF();
        picture = picture.scaledToWidth(qRound(pictureWidth * ratio), Qt::SmoothTransformation);
        picture.setDevicePixelRatio(ratio);
        return picture;
    }
};

} // namespace

QString GuideWindow::findGuide()
{
    QDir folder(QApplication::applicationDirPath());
    const QString installed =
        folder.filePath(QStringLiteral("../" INSTALLED_PAGES "/") + QLatin1String(guideName));
    if (QFileInfo(installed).isFile())
        return QDir::cleanPath(installed);
    // A build folder lies in the tree.
    constexpr int mostSteps = 4;
    for (int step = 0; step < mostSteps; ++step) {
        QString page = folder.filePath(QStringLiteral("docs/") + QLatin1String(guideName));
        if (QFileInfo(page).isFile())
            return page;
        if (!folder.cdUp())
            break;
    }
    return {};
}

GuideWindow::GuideWindow(const QString& fileName)
    : m_browser(new GuideBrowser)
    , m_search(new QLineEdit)
    , m_found(new QLabel)
{
    setObjectName(QStringLiteral("guide"));
    // The program ends with its own window.
    setAttribute(Qt::WA_QuitOnClose, false);
    resize(usualSize);
    m_browser->setObjectName(QStringLiteral("guideText"));
    m_browser->setAccessibleName(QStringLiteral("Руководство"));
    m_browser->setOpenExternalLinks(true);
    m_browser->document()->setDocumentMargin(margin);
    m_search->setObjectName(QStringLiteral("guideSearch"));
    m_search->setPlaceholderText(QStringLiteral("Найти в руководстве"));
    m_search->setAccessibleName(QStringLiteral("Найти в руководстве"));
    m_search->setClearButtonEnabled(true);

    m_found->setObjectName(QStringLiteral("guideFound"));

    auto* bar = new QToolBar;
    addButton(*bar, QStringLiteral("Назад"), QKeySequence::Back, [this] { m_browser->backward(); });
    addButton(
        *bar, QStringLiteral("Вперёд"), QKeySequence::Forward, [this] { m_browser->forward(); });
    addButton(*bar, QStringLiteral("В начало"), QKeySequence(int(Qt::ALT) + int(Qt::Key_Home)),
        [this] { m_browser->home(); });
    bar->addSeparator();
    bar->addWidget(m_search);
    addButton(*bar, QStringLiteral("Дальше"), QKeySequence::FindNext, [this] { find(false); });
    addButton(*bar, QStringLiteral("Раньше"), QKeySequence::FindPrevious, [this] { find(true); });
    bar->addWidget(m_found);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(bar);
    layout->addWidget(m_browser);

    const auto onKeys = [this](const QKeySequence& keys, const std::function<void()>& action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    onKeys(QKeySequence::Find, [this] {
        m_search->setFocus(Qt::ShortcutFocusReason);
        m_search->selectAll();
    });
    onKeys(QKeySequence(Qt::Key_Escape), [this] { close(); });
    connect(m_search, &QLineEdit::returnPressed, this, [this] { find(false); });
    connect(m_search, &QLineEdit::textChanged, m_found, &QLabel::clear);
    connect(m_browser, &QTextBrowser::sourceChanged, this, [this] {
        // A page begins with its title.
        setWindowTitle(m_browser->document()->firstBlock().text());
    });
    m_browser->setSource(QUrl::fromLocalFile(fileName));
    m_browser->setFocus();
}

void GuideWindow::addButton(QToolBar& bar, const QString& text, const QKeySequence& keys,
    const std::function<void()>& action)
{
    QAction* added = bar.addAction(text);
    added->setShortcut(keys);
    connect(added, &QAction::triggered, this, action);
}

void GuideWindow::find(bool backwards)
{
    const QString text = m_search->text();
    if (text.isEmpty())
        return;
    const QTextDocument::FindFlags flags =
        backwards ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    m_found->clear();
    if (m_browser->find(text, flags))
        return;
    // Round the end of the page.
    const QTextCursor before = m_browser->textCursor();
    m_browser->moveCursor(backwards ? QTextCursor::End : QTextCursor::Start);
    if (m_browser->find(text, flags))
        return;
    m_browser->setTextCursor(before);
    m_found->setText(QStringLiteral(" Не найдено"));
}
