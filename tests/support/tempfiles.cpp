#include "support/tempfiles.h"

#include <QFile>

TempFiles::TempFiles()
{
    if (!m_folder.isValid())
        qFatal("No temporary folder: %s", qUtf8Printable(m_folder.errorString()));
}

QString TempFiles::path(const QString& name) const
{
    return m_folder.filePath(name);
}

QString TempFiles::write(const QString& name, const QByteArray& content) const
{
    // A new file in place of the old one: to overwrite would make some file systems wait for
    // the disk.
    remove(name);
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("Cannot write %s", qUtf8Printable(file.fileName()));
    return file.fileName();
}

void TempFiles::remove(const QString& name) const
{
    QFile::remove(path(name));
}
