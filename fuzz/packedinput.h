#pragma once

#include "import/importoptions.h"
#include "support/tempfiles.h"

#include <QByteArray>
#include <QByteArrayList>

/// One input of a target: a first line of letters, each of which chooses something, then texts that
/// are parted by lines of "====". So an input can be written by hand and is easy to mutate.
class PackedInput {
public:
    PackedInput(const uint8_t* data, size_t size);

    bool has(char letter) const { return m_letters.contains(letter); }
    /// A text by its zero-based number; null where there are fewer.
    QByteArray text(int number) const { return m_texts.value(number); }

    /// The options that the letters choose: p and o search designations of points and objects, s
    /// swaps the axes, t and b give prefixes, 9 lets the numbers start at 99, and w, i, k, u and x
    /// are for Windows-1251, IBM866, KOI8-R, UTF-16 and an unknown encoding instead of UTF-8.
    ImportOptions options() const;

private:
    QByteArray m_letters;
    QByteArrayList m_texts;
};

/// A file of the folder with a text of the input; no such file where the input has none. Returns
/// its name.
QString writeText(const TempFiles& folder, const QString& name, const QByteArray& text);
