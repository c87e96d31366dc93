#pragma once

#include "import/linereader.h"

#include <QChar>
#include <QString>

/// The name of the MID file that belongs to a MIF file: the last letter changes, in lower case
/// whatever the case of the name.
QString midFileName(const QString& mifFileName);

/// Reads a MID file: a row of attributes for each object of the MIF file, in the same order.
class MidFile {
public:
    /// False when the file cannot be opened; nothing is reported.
    bool open(const QString& fileName, QTextCodec* codec) { return m_in.open(fileName, codec); }
    void close() { m_in.close(); }
    bool isOpen() const { return m_in.isOpen(); }
    QString fileName() const { return m_in.fileName(); }
    /// The number of rows read: the one-based number of the last row.
    int lineNum() const { return m_in.lineNum(); }

    /// Reads a row. False when it is blank or missing.
    bool readMidLine() { return readMidRow(nullptr); }
    /// Reads a row and stores its first column in `def` unless that is null; does nothing and
    /// returns true when there is no file. False when the row is blank or missing.
    bool readMidDef(QString* def) { return !isOpen() || readMidRow(def); }
    /// The first column of a row, without quotes; null when it is empty.
    QString extractDef(TextView row) const;

    QChar delimiter = QLatin1Char(','); ///< between the columns

private:
    bool readMidRow(QString* def);

    LineReader m_in;
};
