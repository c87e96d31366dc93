#pragma once

#include <QByteArray>
#include <QString>

/// The text of a MIF file with these objects, for a MID file with commas.
QByteArray mifText(const QByteArray& objects);

/// Writes path + ".mif" and path + ".mid".
void writeMif(const QString& path, const QByteArray& objects, const QByteArray& rows);

/// A drawing of one square: points and texts beside its vertices, the text "ЗУ1" in its middle.
QByteArray squareDxf(bool withPoints);
