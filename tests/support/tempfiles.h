#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// Writes a whole file in place of an older one, if there is any; ends the program when that fails.
void writeFile(const QString& path, const QByteArray& content);

/// A folder of files that vanishes with the object.
class TempFiles {
public:
    TempFiles();

    /// The path of the file `name` in the folder, whether it exists or not.
    QString path(const QString& name) const;
    /// Writes the file `name`, over an older one if there is any, and returns its path.
    QString write(const QString& name, const QByteArray& content) const;
    /// Deletes the file `name`; nothing happens when there is none.
    void remove(const QString& name) const;

private:
    QTemporaryDir m_folder;
};
