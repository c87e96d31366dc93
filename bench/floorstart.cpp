// The floor below all commands: a program with Qt Core that does nothing.

#include <QCoreApplication>

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    return 0;
}
