#include "CancelRequest.h"

#include <csignal>

namespace ResultsArchive {

namespace {

volatile std::sig_atomic_t requested = 0;

extern "C" void request(int signal)
{
    std::signal(signal, request); // some systems remove the handler when they call it
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
    reported_ = isRequested();
    return reported_;
}

bool CancelRequest::isRequested() const
{
    return requested != 0;
}

bool CancelRequest::wasReported() const
{
    return reported_;
}

} // namespace ResultsArchive
