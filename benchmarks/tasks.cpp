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
    using AsyncTask::AsyncTask;

protected:
    void execute() override { setFinished(); }
};

enum Parent { NoParent, Processor };

void run(AsyncTaskProcessor &processor)
{
    processor.setExitEventLoopWhenDone(true);
    processor.startLater();
    QCoreApplication::exec();
}

template <Parent parent> void queueOwn(benchmark::State &state)
{
    for (auto _ : state) {
        AsyncTaskProcessor processor;
        for (int index = 0; index < TaskCount; ++index)
            processor.addTask(
                new QuickTask(QStringLiteral("quick"), parent == Processor ? &processor : nullptr));
        run(processor);
    }
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

// "memory" is what the tasks take while all of them wait. Each has a name of its own.
template <Parent parent> void queueOfLength(benchmark::State &state)
{
    for (auto _ : state) {
        const qint64 before = Workplace::memory();
        AsyncTaskProcessor processor;
        for (int index = 0; index < state.range(0); ++index)
            processor.addTask(new QuickTask(QStringLiteral("Task %1").arg(index),
                                            parent == Processor ? &processor : nullptr));
        state.counters["memory"] = static_cast<double>(Workplace::memory() - before);
        run(processor);
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
