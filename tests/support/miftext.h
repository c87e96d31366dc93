#pragma once

#include <QByteArray>

/// The start of a MIF file up to its data section: six lines.
inline QByteArray mifHeader()
{
    return "Version 300\n"
           "Charset \"WindowsCyrillic\"\n"
           "Delimiter \",\"\n"
           "Columns 1\n"
           "  def Char(20)\n"
           "Data\n";
}

/// A MIF file with these objects; they start on line 7.
inline QByteArray mif(const QByteArray& objects)
{
    return mifHeader() + objects;
}
