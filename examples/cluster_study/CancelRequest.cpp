#include "CancelRequest.h"

#include "Platform.h"

#include <csignal>

namespace ClusterStudy {

namespace {

volatile std::sig_atomic_t requests = 0;

extern "C" void request(int signal)
{
    std::signal(signal, request); // some systems remove the handler when they call it
    requests = requests + 1;
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
    return isRequested();
}

bool CancelRequest::isRequested() const
{
    return requests != 0;
}

int CancelRequest::count() const
{
    return requests;
}

} // namespace ClusterStudy
