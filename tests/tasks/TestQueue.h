#pragma once

#include <Utility/AsyncTaskMonitor.h>
#include <Utility/AsyncTaskProcessor.h>
#include <Utility/System.h>

#include "TemporaryLog.h"
#include "TestTask.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QList>
#include <QtCore/QPointer>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <new>

using Vorn::Util::AsyncTask;
using Vorn::Util::AsyncTaskMonitor;
using Vorn::Util::AsyncTaskProcessor;

const int TimedOut = -1;

/// Runs the event loop. A run that never ends gives TimedOut.
inline int exec()
{
    QTimer watchdog;
    watchdog.setSingleShot(true);
    QObject::connect(&watchdog, &QTimer::timeout, [] { QCoreApplication::exit(TimedOut); });
    watchdog.start(20000);
    return QCoreApplication::exec();
}

/// Runs the event loop until nothing is left to do at once. Gives 42 when nothing else ended it.
inline int execUntilIdle()
{
    QTimer::singleShot(50, qApp, [] { QCoreApplication::exit(42); });
    return QCoreApplication::exec();
}

/// Delivers the processor's queued calls, including those that are made meanwhile.
inline void deliverQueuedCalls(AsyncTaskProcessor &processor)
{
    QCoreApplication::sendPostedEvents(&processor, QEvent::MetaCall);
}

/// The possible last lines of a log, for runs of \a atLeast to \a atMost milliseconds.
inline QStringList finishedLines(qint64 atLeast, qint64 atMost)
{
    QStringList lines;
    for (qint64 time = atLeast; time <= atMost; ++time)
        lines.append(QStringLiteral("Finished processing tasks in ")
                     + Vorn::Util::System::getElapsedTimeString(time));
    return lines;
}

/// The log of a run: "A" for a task that succeeds, "A: broken" for one that fails with this error,
/// "-> C" for the skip to a clean-up task and "cancel" for a cancel.
inline QStringList linesOfRun(std::initializer_list<const char *> steps)
{
    QStringList lines{QStringLiteral("Start processing tasks")};
    for (const QString &step : texts(steps)) {
        const QString name = step.section(QStringLiteral(": "), 0, 0);
        const QString error = step.section(QStringLiteral(": "), 1);
        if (step == QLatin1String("cancel")) {
            lines += QStringLiteral("Task processing has been canceled");
        } else if (step.startsWith(QLatin1String("-> "))) {
            lines += QStringLiteral("Skipping to clean-up task: ") + step.mid(3);
        } else {
            lines += QStringLiteral("Starting task: ") + name;
            lines += error.isEmpty()
                ? QStringLiteral("Task finished in TIME")
                : QStringLiteral("Task finished with errors in TIME: error = ") + error;
        }
    }
    return lines << QStringLiteral("Finished processing tasks in TIME");
}

/// A processor with a log, and a journal of its signals.
struct Queue
{
    TemporaryLog log;
    QStringList journal;
    AsyncTaskProcessor processor;

    Queue()
    {
        processor.setLog(log);
        processor.setExitEventLoopWhenDone(true);
        QObject::connect(&processor, &AsyncTaskProcessor::started, [this](AsyncTask *task) {
            journal.append(QStringLiteral("started ") + task->name());
        });
        QObject::connect(&processor, &AsyncTaskProcessor::finished, [this](AsyncTask *task) {
            journal.append(QStringLiteral("finished ") + task->name());
        });
        QObject::connect(&processor, &AsyncTaskProcessor::progress,
                         [this](AsyncTask *task, const QString &text) {
                             const QString name = task ? task->name() : QStringLiteral("nothing");
                             journal.append(QStringLiteral("progress ") + name + QLatin1Char(' ')
                                            + text);
                         });
    }

    QPointer<TestTask> add(const char *name, const TestTask::Work &work = succeed())
    {
        auto *task = new TestTask(QString::fromLatin1(name), work);
        processor.addTask(task);
        return task;
    }

    int run()
    {
        processor.startLater();
        return exec();
    }

    QStringList lines() const { return log.linesWithoutTimes(); }
};

/// Gives its answers one after another, the last one again and again.
class TestMonitor : public AsyncTaskMonitor
{
public:
    explicit TestMonitor(const QList<bool> &answers)
        : answers_(answers)
    {
    }

    bool isCanceled() override
    {
        if (whenAsked)
            whenAsked();
        return answers_.at(qMin(asked++, static_cast<int>(answers_.size()) - 1));
    }

    int asked = 0;
    std::function<void()> whenAsked;

private:
    QList<bool> answers_;
};

/// All objects of this class get the same address, so only one exists at a time.
class SameAddressTask : public TestTask
{
public:
    using TestTask::TestTask;

    static void *operator new(std::size_t size)
    {
        alignas(std::max_align_t) static unsigned char place[1024];
        if (taken || size > sizeof place)
            qFatal("No place for the task");
        taken = true;
        return place;
    }

    static void operator delete(void *) { taken = false; }

private:
    inline static bool taken = false;
};
