#include <QByteArray>
#include <QDir>
#include <QFile>

#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

/// Runs one input; false when it cannot be read.
static bool replay(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(path));
        return false;
    }
    std::fprintf(stderr, "%s\n", qPrintable(path));
    const QByteArray bytes = file.readAll();
    LLVMFuzzerTestOneInput(
        reinterpret_cast<const uint8_t*>(bytes.constData()), static_cast<size_t>(bytes.size()));
    return true;
}

/// Runs every input of a folder; false when there is none.
static bool replayFolder(const QDir& folder)
{
    const QStringList names = folder.entryList(QDir::Files);
    if (names.isEmpty())
        std::fprintf(stderr, "no inputs in %s\n", qPrintable(folder.path()));
    bool ok = !names.isEmpty();
    for (const QString& name : names)
        ok = replay(folder.filePath(name)) && ok;
    return ok;
}

/// Replays inputs, one of which may be what a fuzzer found, without a fuzzer: each argument is a
/// file or a folder of files.
int main(int argc, char** argv)
{
    bool ok = argc > 1;
    for (int i = 1; i < argc; ++i) {
        const QString path = QFile::decodeName(argv[i]);
        ok = (QFileInfo(path).isDir() ? replayFolder(QDir(path)) : replay(path)) && ok;
    }
    return ok ? 0 : 1;
}
