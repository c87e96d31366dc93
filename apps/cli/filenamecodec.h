#pragma once

#include <QTextCodec>

/// UTF-8 that keeps every byte: one that is no part of a UTF-8 sequence becomes a character of its
/// own, half of a surrogate pair, which turns into that byte again.
///
/// A name of a file is any row of bytes. As the locale's codec this one lets names that are no
/// UTF-8 be opened and written under.
class FileNameCodec : public QTextCodec {
public:
    /// The codec; it lasts as long as the program. It has no name, so that nobody can ask for it.
    static QTextCodec* instance();

    /// The byte that a character stands for; -1 for all others.
    static int strayByte(uint character);

    QByteArray name() const override { return {}; }
    int mibEnum() const override { return 0; }

protected:
    QString convertToUnicode(const char* bytes, int length, ConverterState* state) const override;
    QByteArray convertFromUnicode(
        const QChar* characters, int length, ConverterState* state) const override;
};
