#pragma once

#include <QtCore/QtGlobal>

#include <atomic>
#include <csignal>
#include <functional>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

/// A process that repeats work without a pause, until the object is destroyed. On a busy machine it
/// may not run for a while, so a test goes on until rounds() or count() says that they have met.
class Adversary
{
public:
    using Work = std::function<void(std::atomic<int> &count)>;

    explicit Adversary(const Work &work)
        : shared_(static_cast<Shared *>(mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE,
                                             MAP_SHARED | MAP_ANONYMOUS, -1, 0)))
    {
        process_ = fork();
        for (; process_ == 0; ++shared_->rounds)
            work(shared_->count);
    }

    ~Adversary()
    {
        ::kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        munmap(shared_, sizeof *shared_);
    }

    bool isRunning() const { return process_ > 0; }

    /// How often the work was done.
    int rounds() const { return shared_->rounds; }

    /// What the work has counted.
    int count() const { return shared_->count; }

private:
    Q_DISABLE_COPY(Adversary)

    // Shared with the process, and zero at first.
    struct Shared
    {
        std::atomic<int> rounds;
        std::atomic<int> count;
    };

    Shared *shared_;
    pid_t process_ = -1;
};
