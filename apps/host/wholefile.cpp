#include "wholefile.h"

#include <unistd.h>

namespace {

/// Writes what the file still holds back, of which a commit takes no notice.
bool writeRest(WholeFile& file)
{
    return file.flush() && file.error() == QFileDevice::NoError;
}

} // namespace

qint64 WholeFile::writeData(const char* data, qint64 size)
{
    // A disk that fills up takes a part without a word; what it says of the rest is the error.
    qint64 done = 0;
    qint64 taken = 0;
    do {
        taken = QSaveFile::writeData(data + done, size - done);
        done += taken;
    } while (taken > 0 && done < size);
    return done == size ? size : -1;
}

bool commitWhole(WholeFile& file)
{
    return writeRest(file) && file.commit();
}

const WholeFile* commitPair(WholeFile& first, WholeFile& second)
{
    for (WholeFile* file : { &first, &second }) {
        if (!writeRest(*file))
            return file;
    }
    // What the disk takes long for is done before the first of them appears. Trouble of a file
    // system that cannot do this is none, as in a commit.
    for (const WholeFile* file : { &first, &second })
        fsync(file->handle());
    for (WholeFile* file : { &first, &second }) {
        if (!file->commit())
            return file;
    }
    return nullptr;
}
