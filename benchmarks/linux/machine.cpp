#include <benchmark/benchmark.h>

#include <array>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

void counterPread(benchmark::State &state)
{
    const int descriptor = ::open("/proc/stat", O_RDONLY);
    std::array<char, 512> buffer{};
    for (auto _ : state) {
        const ssize_t length = ::pread(descriptor, buffer.data(), buffer.size(), 0);
        benchmark::DoNotOptimize(
            std::memchr(buffer.data(), '\n', static_cast<std::size_t>(length)));
    }
    ::close(descriptor);
}

} // namespace

BENCHMARK(counterPread)->Name("counter/pread");
