// The child process of the tests: "helper BEHAVIOUR [ARGUMENT...]".

#include <QtCore/QByteArray>

#include <cstdio>
#include <cstdlib>

namespace {

int usage()
{
    std::fputs("helper: no such behaviour\n", stderr);
    return 99;
}

} // namespace

int main(int argc, char *argv[])
{
    const QByteArray behaviour = argc > 1 ? argv[1] : "";
    if (behaviour == "exit" && argc > 2)
        return std::atoi(argv[2]);
    return usage();
}
