#pragma once

#include <Utility/AsyncTaskMonitor.h>

namespace ClusterStudy {

/// Cancels the run when the user presses Ctrl-C or, on Linux, closes the terminal, or when the
/// system asks the program to end. A program has one object of this class.
class CancelRequest : public Vorn::Util::AsyncTaskMonitor
{
public:
    /// Installs the signal handlers.
    CancelRequest();

    bool isCanceled() override;

    /// Whether a signal has arrived.
    bool isRequested() const;

    /// How many signals have arrived.
    int count() const;
};

} // namespace ClusterStudy
