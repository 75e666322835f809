#pragma once

#include <Utility/AsyncTaskMonitor.h>

namespace ResultsArchive {

/// Cancels the run when the user presses Ctrl-C or, on Linux, closes the terminal, or when the
/// system asks the program to end. A program has one object of this class.
///
/// On a terminal Ctrl-C also stops 7-Zip while it runs, so that the current step ends early.
/// Otherwise the current step is completed first.
class CancelRequest : public Vorn::Util::AsyncTaskMonitor
{
public:
    /// Installs the signal handlers.
    CancelRequest();

    bool isCanceled() override;

    /// Whether a signal has arrived. The processor may not have asked yet.
    bool isRequested() const;

    /// Whether isCanceled() has returned true, so that the processor stops.
    bool wasReported() const;

private:
    bool reported_ = false;
};

} // namespace ResultsArchive
