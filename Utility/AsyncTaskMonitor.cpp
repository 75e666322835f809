#include <Utility/AsyncTaskMonitor.h>

namespace Vorn::Util {

AsyncTaskMonitor::AsyncTaskMonitor() = default;
AsyncTaskMonitor::AsyncTaskMonitor(const AsyncTaskMonitor &) = default;
AsyncTaskMonitor &AsyncTaskMonitor::operator=(const AsyncTaskMonitor &) = default;
AsyncTaskMonitor::~AsyncTaskMonitor() = default;

} // namespace Vorn::Util
