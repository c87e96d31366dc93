#include "packedinput.h"

PackedInput::PackedInput(const uint8_t* data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const int end = input.indexOf('\n');
    m_letters = input.left(end);
    if (end < 0)
        return;
    static const QByteArray border("\n====\n");
    int start = end + 1;
    for (int next = input.indexOf(border, start); next >= 0; next = input.indexOf(border, start)) {
        // The line end before the border belongs to the text.
        m_texts.append(input.mid(start, next + 1 - start));
        start = next + border.size();
    }
    m_texts.append(input.mid(start));
}

ImportOptions PackedInput::options() const
{
    ImportOptions options;
    options.searchPointDefs = has('p');
    options.searchObjectDefs = has('o');
    options.swapXY = has('s');
    if (has('t'))
        options.pointPref = QStringLiteral("т");
    if (has('b'))
        options.objectPref = QStringLiteral("об");
    options.pointStartNum = has('9') ? 99 : 1;
    options.objectStartNum = options.pointStartNum;
    static constexpr struct {
        char letter;
        const char* name;
    } encodings[] = { { 'w', "Windows-1251" }, { 'i', "IBM866" }, { 'k', "KOI8-R" },
        { 'u', "UTF-16" }, { 'x', "none" } };
    options.encoding = "UTF-8";
    for (const auto& encoding : encodings) {
        if (has(encoding.letter))
            options.encoding = encoding.name;
    }
    return options;
}

QString writeText(const TempFiles& folder, const QString& name, const QByteArray& text)
{
    if (!text.isNull())
        return folder.write(name, text);
    folder.remove(name);
    return folder.path(name);
}
