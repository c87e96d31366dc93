#pragma once

#include <QByteArray>

/// The beginning of a MIF file, up to its objects.
inline QByteArray mifHeader()
{
    return "Version 300\nCharset \"Neutral\"\nDelimiter \",\"\nData\n";
}

/// What a drawing begins with: a HEADER section without contents.
inline QByteArray headerSection()
{
    return "0\nSECTION\n2\nHEADER\n0\nENDSEC\n";
}

/// A drawing with the given entities; the first one stands on line 11.
inline QByteArray drawing(const QByteArray& entities)
{
    return headerSection() + "0\nSECTION\n2\nENTITIES\n" + entities + "0\nENDSEC\n0\nEOF\n";
}
