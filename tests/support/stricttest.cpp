#include "support/stricttest.h"

#include <QTest>

namespace {

QtMessageHandler testHandler = nullptr;

/// What platform plug-ins say of themselves, or of a screen without a window manager; it tells
/// nothing about the program under test.
bool isPlatformRemark(const QString& message)
{
    // A window manager and Qt meet at a window that has just gone.
    if (message.contains(QLatin1String("XCB error: 3 (BadWindow)"))) {
        return message.contains(QLatin1String("TranslateCoords"))
            || message.contains(QLatin1String("QueryTree"));
    }
    if (message.contains(QLatin1String("XCB error: 8 (BadMatch)")))
        return message.contains(QLatin1String("SetInputFocus"));
    return message.startsWith(QLatin1String("This plugin does not support "))
        || message.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR not set"))
        || message.startsWith(QLatin1String("QStandardPaths: wrong permissions on runtime"));
}

void failOnWarning(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (isPlatformRemark(message))
        return;
    testHandler(type, context, message);
    if (type == QtDebugMsg || type == QtInfoMsg)
        return;
    QTest::qFail(qPrintable(QStringLiteral("Qt warns: ") + message), __FILE__, __LINE__);
}

} // namespace

// Qt Test puts its own handler in place for the run, so ours goes on top of it here.
void StrictTest::initTestCase()
{
    testHandler = qInstallMessageHandler(failOnWarning);
}

void StrictTest::cleanupTestCase()
{
    qInstallMessageHandler(testHandler);
}
