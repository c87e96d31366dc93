#pragma once

#include <QString>

class QTextCodec;

/// The text of a drawing's TEXT entity without its control sequences, as published by Autodesk:
/// %%d, %%p and %%c are the signs of degree, tolerance and diameter, %%nnn is the byte nnn
/// (decimal, 000 to 255) in the encoding of the file. All other sequences stay.
QString decodeText(const QString& text, const QTextCodec* codec);
