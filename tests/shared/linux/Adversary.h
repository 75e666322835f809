#pragma once

#include <QtCore/QtGlobal>

#include <atomic>
#include <csignal>
#include <functional>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

/// A process that repeats work without a pause, until the object is destroyed.
class Adversary
{
public:
    using Work = std::function<void(std::atomic<int> &count)>;

    explicit Adversary(const Work &work)
        : count_(static_cast<std::atomic<int> *>(mmap(nullptr, sizeof(std::atomic<int>),
                                                      PROT_READ | PROT_WRITE,
                                                      MAP_SHARED | MAP_ANONYMOUS, -1, 0)))
    {
        *count_ = 0;
        process_ = fork();
        while (process_ == 0)
            work(*count_);
    }

    ~Adversary()
    {
        ::kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        munmap(count_, sizeof *count_);
    }

    bool isRunning() const { return process_ > 0; }
    int count() const { return *count_; }

private:
    Q_DISABLE_COPY(Adversary)

    std::atomic<int> *count_; // shared with the process
    pid_t process_ = -1;
};
