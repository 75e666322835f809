#pragma once

#include <QtCore/QtGlobal>

#include <atomic>
#include <csignal>
#include <functional>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

/// A process that repeats work without a pause, until the object is destroyed. On a busy machine it
/// may not run for a while: waitForWork() gives it the time.
class Adversary
{
public:
    using Work = std::function<void(std::atomic<int> &count)>;

    explicit Adversary(const Work &work)
        : shared_(static_cast<Shared *>(mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE,
                                             MAP_SHARED | MAP_ANONYMOUS, -1, 0)))
    {
        const pid_t parent = getpid();
        process_ = fork();
        // It ends with this process, also if that is killed.
        if (process_ == 0 && (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || getppid() != parent))
            _exit(1);
        for (; process_ == 0; ++shared_->rounds)
            work(shared_->count);
    }

    ~Adversary()
    {
        if (isRunning()) {
            ::kill(process_, SIGKILL);
            waitpid(process_, nullptr, 0);
        }
        munmap(shared_, sizeof *shared_);
    }

    bool isRunning() const { return process_ > 0; }

    /// Waits until the work was done once more, from its beginning.
    void waitForWork() const
    {
        constexpr int Pause = 50; // microseconds
        const int before = shared_->rounds;
        while (shared_->rounds - before < 2)
            usleep(Pause);
    }

    /// What the work has counted.
    int count() const { return shared_->count; }

private:
    Q_DISABLE_COPY(Adversary)

    // Shared with the process, and zero at first.
    struct Shared
    {
        std::atomic<int> rounds; // how often the work was done
        std::atomic<int> count;
    };

    Shared *shared_;
    pid_t process_ = -1;
};
