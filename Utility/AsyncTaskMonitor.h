#pragma once

#include <Utility/Export.h>

namespace Vorn::Util {

/// \ingroup tasks
/// Tells an AsyncTaskProcessor whether the user has cancelled the run.
///
/// \snippet docs/samples/tasks.cpp monitor
/// \snippet docs/samples/tasks.cpp set monitor
///
/// The processor does not own the monitor, which must exist until the run has ended.
///
/// Thread: the processor calls isCanceled() in its own thread, after every finished task.
class VORNUTILITY_EXPORT AsyncTaskMonitor
{
public:
    /// Does nothing: the class has no data.
    AsyncTaskMonitor();

    /// Does nothing.
    AsyncTaskMonitor(const AsyncTaskMonitor &other);

    /// Does nothing.
    AsyncTaskMonitor &operator=(const AsyncTaskMonitor &other);

    /// Does nothing. Before, call AsyncTaskProcessor::setTaskMonitor() with null if the run has not
    /// ended.
    virtual ~AsyncTaskMonitor();

    /// True once the user has asked to stop.
    virtual bool isCanceled() = 0;
};

} // namespace Vorn::Util
