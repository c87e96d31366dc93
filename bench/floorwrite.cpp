// The floor below all writers: as many bytes as a file has, written in blocks.

#include <QCoreApplication>
#include <QFile>

#include <algorithm>

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3)
        return EXIT_FAILURE;
    const QFile model(arguments.at(1));
    QFile copy(arguments.at(2));
    if (!copy.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return EXIT_FAILURE;
    const QByteArray block(1 << 18, 'x');
    for (qint64 left = model.size(); left > 0; left -= block.size()) {
        const qint64 size = std::min<qint64>(left, block.size());
        if (copy.write(block.constData(), size) != size)
            return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
