#pragma once

#include <QSaveFile>

/// A file that is put in its place when all of it could be written, by the functions below; else it
/// says why it was not.
class WholeFile : public QSaveFile {
    Q_OBJECT

public:
    using QSaveFile::QSaveFile;

protected:
    qint64 writeData(const char* data, qint64 size) override;
};

/// Puts a file in its place; false when not all of it could be written.
bool commitWhole(WholeFile& file);

/// Puts two files that belong together in their places, neither of them before both are written.
/// Returns the one that failed, or null.
const WholeFile* commitPair(WholeFile& first, WholeFile& second);
