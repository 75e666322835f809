#include "Workplace.h"

#include <Utility/AsyncTask.h>
#include <Utility/AsyncTaskProcessor.h>
#include <Utility/Command.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QProcess>

#include <benchmark/benchmark.h>

using namespace Vorn::Util;

namespace {

constexpr int TaskCount = 100000;

class QuickTask : public AsyncTask
{
public:
    explicit QuickTask(QObject *parent)
        : AsyncTask(QStringLiteral("quick"), parent)
    {
    }

protected:
    void execute() override { setFinished(); }
};

enum Parent { NoParent, Processor };

// Runs \a count tasks, created with this parent. Returns the memory, in bytes, that they took while
// all of them waited.
qint64 runQueue(int count, Parent parent)
{
    const qint64 before = Workplace::memory();
    AsyncTaskProcessor processor;
    processor.setExitEventLoopWhenDone(true);
    for (int index = 0; index < count; ++index)
        processor.addTask(new QuickTask(parent == Processor ? &processor : nullptr));
    const qint64 taken = Workplace::memory() - before;
    processor.startLater();
    QCoreApplication::exec();
    return taken;
}

template <Parent parent> void queueOwn(benchmark::State &state)
{
    for (auto _ : state)
        runQueue(TaskCount, parent);
}

// The peer of the queue: the least work that runs objects one after the other on the event loop.
class Turn : public QObject
{
public:
    explicit Turn(int count)
        : left_(count)
    {
    }

    void next()
    {
        delete new QObject(this);
        if (--left_ == 0)
            QCoreApplication::exit(0);
        else
            QMetaObject::invokeMethod(
                this, [this] { next(); }, Qt::QueuedConnection);
    }

private:
    int left_;
};

void queueTurns(benchmark::State &state)
{
    for (auto _ : state) {
        Turn turn(TaskCount);
        QMetaObject::invokeMethod(
            &turn, [&turn] { turn.next(); }, Qt::QueuedConnection);
        QCoreApplication::exec();
    }
}

template <Parent parent> void queueOfLength(benchmark::State &state)
{
    for (auto _ : state) {
        const qint64 memory = runQueue(static_cast<int>(state.range(0)), parent);
        state.counters["memory"] = static_cast<double>(memory);
    }
}

void commandOwn(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(Command().run(QStringLiteral("echo done"), 10, false));
}

void commandProcess(benchmark::State &state)
{
    const QString script = Workplace::path(QStringLiteral("script"));
    for (auto _ : state) {
        QFile file(script);
        file.open(QIODevice::WriteOnly);
        file.write("echo done");
        file.close();
        QProcess process;
        process.start(QStringLiteral("/bin/sh"), {script});
        process.waitForFinished();
        benchmark::DoNotOptimize(process.readAll());
        QFile::remove(script);
    }
}

} // namespace

BENCHMARK(queueOwn<NoParent>)->Name("queue/own")->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(queueTurns)->Name("queue/turns")->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(queueOwn<Processor>)
    ->Name("queueOfChildren/own")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(queueTurns)->Name("queueOfChildren/turns")->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(queueOfLength<NoParent>)
    ->Name("growth/queue")
    ->RangeMultiplier(10)
    ->Range(1000, 1000000)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(queueOfLength<Processor>)
    ->Name("growth/queueOfChildren")
    ->RangeMultiplier(10)
    ->Range(1000, 1000000)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(commandOwn)->Name("command/own")->UseRealTime()->Iterations(100);
BENCHMARK(commandProcess)->Name("command/process")->UseRealTime()->Iterations(100);
