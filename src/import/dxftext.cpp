#include "import/dxftext.h"

#include "geometry/digits.h"

#include <QTextCodec>

#include <algorithm>

namespace {

/// `text` with every `escape` replaced by `symbol`, at a cost in step with its length.
QString withSymbol(const QString& text, QLatin1String escape, QChar symbol)
{
    QString result;
    int start = 0;
    for (int hit = text.indexOf(escape); hit >= 0; hit = text.indexOf(escape, start)) {
        result.append(QStringView(text).mid(start, hit - start)).append(symbol);
        start = hit + escape.size();
    }
    return start == 0 ? text : result.append(QStringView(text).mid(start));
}

/// The number of a %%nnn escape at the start of `text`, or -1.
int escapedByte(QStringView text)
{
    constexpr int length = 5;
    if (text.size() < length || text.at(0) != QLatin1Char('%') || text.at(1) != QLatin1Char('%'))
        return -1;
    const QStringView digits = text.mid(2, 3);
    return std::all_of(digits.begin(), digits.end(), isDigit) ? digits.toString().toInt() : -1;
}

} // namespace

QString decodeText(const QString& text, const QTextCodec* codec)
{
    if (!text.contains(QLatin1String("%%")))
        return text;

    QString symbols = withSymbol(text, QLatin1String("%%d"), QChar(0x00B0));
    symbols = withSymbol(symbols, QLatin1String("%%p"), QChar(0x00B1));
    symbols = withSymbol(symbols, QLatin1String("%%c"), QChar(0x00D8));
    if (!symbols.isValidUtf16())
        return symbols;

    QString result;
    result.reserve(symbols.size());
    for (int i = 0; i < symbols.size();) {
        const int byte = escapedByte(QStringView(symbols).mid(i));
        if (byte < 0) {
            result.append(symbols.at(i++));
            continue;
        }
        if (byte <= 255)
            result.append(codec->toUnicode(QByteArray(1, static_cast<char>(byte))));
        else
            result.append(QStringView(symbols).mid(i, 5));
        i += 5;
    }
    return result;
}
