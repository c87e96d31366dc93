#pragma once

#include <QSaveFile>

/// Puts a file in its place when all of it could be written; else nothing, and the file says why.
inline bool commitWhole(QSaveFile& file)
{
    // A commit takes no notice of trouble with the last bytes, which the file still holds back.
    return file.flush() && file.commit();
}
