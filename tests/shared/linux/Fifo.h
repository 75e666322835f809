#pragma once

#include <QtCore/QFile>

#include <atomic>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

/// An empty named pipe. Opening it for reading does not block, and is recorded.
class Fifo
{
public:
    explicit Fifo(const QString &fileName)
        : fileName_(QFile::encodeName(fileName))
        , isMade_(mkfifo(fileName_.constData(), S_IRUSR | S_IWUSR) == 0)
    {
        // open() waits for a reader; close() then gives the reader the end of the file.
        if (isMade_)
            writer_ = std::thread([this] {
                const int writer = open(fileName_.constData(), O_WRONLY | O_CLOEXEC);
                wasRead_ = !isLookedAt_;
                close(writer);
            });
    }

    ~Fifo() { wasRead(); }

    bool isMade() const { return isMade_; }

    /// Whether somebody has opened it for reading so far. Call it last: afterwards the pipe has no
    /// writer any more.
    bool wasRead()
    {
        if (writer_.joinable()) {
            isLookedAt_ = true;
            const int reader = open(fileName_.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
            writer_.join();
            close(reader);
        }
        return wasRead_;
    }

private:
    Q_DISABLE_COPY(Fifo)

    const QByteArray fileName_;
    const bool isMade_;
    std::atomic<bool> isLookedAt_{false};
    std::atomic<bool> wasRead_{false};
    std::thread writer_;
};
