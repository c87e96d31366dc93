#include "support/tempfiles.h"

#include <QFile>

void writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    // A new file in place of the old one: to overwrite would make some file systems wait for
    // the disk.
    file.remove();
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("Cannot write %s", qUtf8Printable(path));
}

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
    writeFile(path(name), content);
    return path(name);
}

void TempFiles::remove(const QString& name) const
{
    QFile::remove(path(name));
}
