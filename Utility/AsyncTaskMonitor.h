#pragma once

#include <Utility/Export.h>

namespace Vorn::Util {

/// Through a monitor the application tells an AsyncTaskProcessor that the user wants to stop.
///
/// \code
/// class CancelButton : public AsyncTaskMonitor
/// {
/// public:
///     bool isCanceled() override { return pressed_; }
///     ...
/// };
/// processor.setTaskMonitor(&cancelButton);
/// \endcode
///
/// The application keeps ownership; the monitor has to outlive the run. It is asked in the
/// processor's thread, after every task.
class VORNUTILITY_EXPORT AsyncTaskMonitor
{
public:
    AsyncTaskMonitor();
    AsyncTaskMonitor(const AsyncTaskMonitor &other);
    AsyncTaskMonitor &operator=(const AsyncTaskMonitor &other);
    virtual ~AsyncTaskMonitor();

    /// True once the user has asked to stop.
    virtual bool isCanceled() = 0;
};

} // namespace Vorn::Util
