#pragma once

#include <QtCore/QtGlobal>

#include <csignal>
#include <sys/resource.h>

/// While it lives, no file of this process or of one that it starts grows beyond \a size, as on a
/// full disk. The output of the test framework counts too: print nothing meanwhile.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(qint64 size)
        : handler_(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit limit = before_;
        limit.rlim_cur = static_cast<rlim_t>(size);
        isSet_ = setrlimit(RLIMIT_FSIZE, &limit) == 0;
    }

    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

    bool isSet() const { return isSet_; }

private:
    Q_DISABLE_COPY(FileSizeLimit)

    void (*handler_)(int);
    rlimit before_{};
    bool isSet_ = false;
};
