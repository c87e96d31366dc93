#include "console.h"

#include "filenamecodec.h"

#include <QTextCodec>

#include <clocale>
#include <cstdio>
#include <mutex>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace {

/// The number of UTF-8 in the register of character sets.
constexpr int utf8Mib = 106;

QTextCodec* systemCodec = nullptr;

constexpr const char* clearLine = "\r\033[K";
std::mutex statusMutex;
bool statusIsShown = false;

QString escaped(uint c)
{
    constexpr uint pictures = 0x2400;
    constexpr uint space = 0x20;
    constexpr uint del = 0x7F;
    if (c < space)
        return QChar(pictures + c);
    if (c == del)
        return QChar(pictures + 0x21);
    const int byte = FileNameCodec::strayByte(c);
    return byte >= 0 ? QStringLiteral("\\x") + QString::number(byte, 16).toUpper()
                     : QStringLiteral("\\u{%1}").arg(QString::number(c, 16).toUpper());
}

/// The character that starts at `index`, or half of one that stands alone.
uint characterAt(const QString& text, int index)
{
    const QChar c = text.at(index);
    const QChar next = index + 1 < text.size() ? text.at(index + 1) : QChar();
    return c.isHighSurrogate() && next.isLowSurrogate() ? QChar::surrogateToUcs4(c, next)
                                                        : c.unicode();
}

} // namespace

bool isDeceptive(uint character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

QString printable(const QString& text)
{
    QString result;
    for (int i = 0; i < text.size();) {
        const uint c = characterAt(text, i);
        const int length = QChar::requiresSurrogates(c) ? 2 : 1;
        result += isDeceptive(c) ? escaped(c) : text.mid(i, length);
        i += length;
    }
    return result;
}

void printError(const QString& text)
{
    const QByteArray line = printable(text).toLocal8Bit() + '\n';
    const std::lock_guard<std::mutex> lock(statusMutex);
    if (std::exchange(statusIsShown, false))
        std::fputs(clearLine, stderr);
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stderr);
}

void showProgressLine(const QString& text)
{
    const QByteArray line = printable(text).toLocal8Bit();
    const std::lock_guard<std::mutex> lock(statusMutex);
    if (statusIsShown || !text.isEmpty())
        std::fputs(clearLine, stderr);
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stderr);
    std::fflush(stderr);
    statusIsShown = !text.isEmpty();
}

bool mayBeColoured(int descriptor)
{
    return isatty(descriptor) == 1 && qEnvironmentVariableIsEmpty("NO_COLOR")
        && qgetenv("TERM") != "dumb";
}

void printMessage(const QString& fileName, const QString& text)
{
    printError(fileName + QStringLiteral(": ") + text);
}

void enableCyrillic()
{
    // As the application object does, which is not there yet.
    std::setlocale(LC_ALL, "");
    systemCodec = QTextCodec::codecForLocale();
    if (systemCodec->mibEnum() == utf8Mib || !systemCodec->canEncode(QStringLiteral("Я")))
        QTextCodec::setCodecForLocale(FileNameCodec::instance());
}

QByteArray systemEncoding()
{
    return systemCodec->name();
}

bool canOpenFiles(int count)
{
    std::vector<int> probes;
    int probe = 0;
    while (static_cast<int>(probes.size()) < count
        && (probe = open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0)
        probes.push_back(probe);
    for (const int opened : probes)
        close(opened);
    return static_cast<int>(probes.size()) == count;
}
