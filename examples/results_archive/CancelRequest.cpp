#include "CancelRequest.h"

#include "Platform.h"

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
    const QVector<int> signalsToEnd = endSignals();
    for (const int signal : signalsToEnd)
        std::signal(signal, request);
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
