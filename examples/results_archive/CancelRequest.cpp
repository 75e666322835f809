#include "CancelRequest.h"

#include <csignal>

namespace ResultsArchive {

namespace {

volatile std::sig_atomic_t requested = 0;

extern "C" void request(int signal)
{
    std::signal(signal, request); // on some systems a signal is caught only once
    requested = 1;
}

} // namespace

CancelRequest::CancelRequest()
{
    std::signal(SIGINT, request);
    std::signal(SIGTERM, request);
}

bool CancelRequest::isCanceled()
{
    told_ = isRequested();
    return told_;
}

bool CancelRequest::isRequested() const
{
    return requested != 0;
}

bool CancelRequest::isTold() const
{
    return told_;
}

} // namespace ResultsArchive
