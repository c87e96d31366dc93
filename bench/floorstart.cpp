#include <QCoreApplication>

/// The start of a program with Qt Core that does nothing.
int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    return 0;
}
