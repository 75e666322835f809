#include "CancelRequest.h"

#include <csignal>

namespace ClusterStudy {

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
    return isRequested();
}

bool CancelRequest::isRequested() const
{
    return requested != 0;
}

} // namespace ClusterStudy
