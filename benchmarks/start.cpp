#include <QtCore/QtGlobal>

#include <benchmark/benchmark.h>

#include <array>
#include <spawn.h>
#include <sys/wait.h>

namespace {

// Starts a program that does nothing and waits until it has ended.
void start(benchmark::State &state, const char *program)
{
    std::array<char *, 2> arguments{const_cast<char *>(program), nullptr};
    std::array<char *, 1> environment{nullptr};
    for (auto _ : state) {
        pid_t process = 0;
        int status = 0;
        if (posix_spawn(&process, program, nullptr, nullptr, arguments.data(), environment.data())
                != 0
            || waitpid(process, &status, 0) != process || status != 0)
            qFatal("cannot run %s", program);
    }
}

} // namespace

// The peer links what the library links: Qt Core, Xml and Network.
BENCHMARK_CAPTURE(start, , START_OWN)->Name("start/own")->UseRealTime()->Iterations(50);
BENCHMARK_CAPTURE(start, , START_QT)->Name("start/qt")->UseRealTime()->Iterations(50);
