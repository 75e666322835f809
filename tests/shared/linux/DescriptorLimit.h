#pragma once

#include <QtCore/QtGlobal>

#include <sys/resource.h>
#include <unistd.h>

/// While it lives, this process can open only \a more further files, none by default. The files of
/// the test framework count too: print nothing meanwhile.
class DescriptorLimit
{
public:
    explicit DescriptorLimit(int more = 0)
    {
        const int firstFree = dup(STDIN_FILENO);
        close(firstFree);
        getrlimit(RLIMIT_NOFILE, &before_);
        rlimit limit = before_;
        limit.rlim_cur = static_cast<rlim_t>(firstFree + more);
        isSet_ = firstFree > 0 && setrlimit(RLIMIT_NOFILE, &limit) == 0;
    }

    ~DescriptorLimit() { setrlimit(RLIMIT_NOFILE, &before_); }

    bool isSet() const { return isSet_; }

private:
    Q_DISABLE_COPY(DescriptorLimit)

    rlimit before_{};
    bool isSet_ = false;
};
