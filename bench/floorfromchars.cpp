// The floor below all text streams: the files mapped into memory and their numbers converted.

#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace {

struct Numbers {
    long long count = 0;
    double sum = 0;
};

bool startsNumber(char c)
{
    return c == '-' || (c >= '0' && c <= '9');
}

void addNumbers(const char* begin, const char* end, Numbers& numbers)
{
    for (const char* it = std::find_if(begin, end, startsNumber); it != end;
         it = std::find_if(it, end, startsNumber)) {
        double value = 0;
        const auto [next, error] = std::from_chars(it, end, value);
        it = next == it ? it + 1 : next;
        if (error != std::errc())
            continue;
        ++numbers.count;
        numbers.sum += value;
    }
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    Numbers numbers;
    for (const QString& fileName : application.arguments().mid(1)) {
        QFile file(fileName);
        if (!file.open(QIODevice::ReadOnly))
            return EXIT_FAILURE;
        const char* text = reinterpret_cast<const char*>(file.map(0, file.size()));
        if (!text)
            return EXIT_FAILURE;
        addNumbers(text, text + file.size(), numbers);
    }
    std::printf("%lld numbers, sum %.2f\n", numbers.count, numbers.sum);
    return EXIT_SUCCESS;
}
