#pragma once

#include <QtCore/QFile>

#include <atomic>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

/// A named pipe without a word in it. Who opens it is not kept waiting, and is noticed.
class Fifo
{
public:
    explicit Fifo(const QString &fileName)
        : fileName_(QFile::encodeName(fileName))
        , isMade_(mkfifo(fileName_.constData(), S_IRUSR | S_IWUSR) == 0)
    {
        // Opening waits for a reader, and closing is the end of what that one reads.
        if (isMade_)
            writer_ = std::thread([this] {
                const int writer = open(fileName_.constData(), O_WRONLY | O_CLOEXEC);
                wasRead_ = !isLookedAt_;
                close(writer);
            });
    }

    ~Fifo() { wasRead(); }

    bool isMade() const { return isMade_; }

    /// Whether somebody has read it until now; nobody can from here on.
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
