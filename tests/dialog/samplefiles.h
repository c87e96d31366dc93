#pragma once

#include <QByteArray>
#include <QString>

/// Writes path + ".mif", where a blank line precedes the objects, and path + ".mid".
void writeMif(const QString& path, const QByteArray& objects, const QByteArray& rows);

/// A drawing of one square: points and texts beside its vertices, the text "ЗУ1" in its middle.
QByteArray squareDxf(bool withPoints);
