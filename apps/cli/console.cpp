#include "console.h"

#include <QTextCodec>

#include <cstdio>

namespace {

QTextCodec* systemCodec = nullptr;

} // namespace

void printError(const QString& text)
{
    const QByteArray line = text.toLocal8Bit() + '\n';
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stderr);
}

void printMessage(const QString& fileName, const QString& text)
{
    printError(fileName + QStringLiteral(": ") + text);
}

void enableCyrillic()
{
    systemCodec = QTextCodec::codecForLocale();
    if (!systemCodec->canEncode(QStringLiteral("Я")))
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

QByteArray systemEncoding()
{
    return systemCodec->name();
}
