#include "require.h"

#include <cstdio>
#include <cstdlib>

void require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "It does not hold that %s\n", what);
    std::abort();
}
