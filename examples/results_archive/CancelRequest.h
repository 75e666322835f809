#pragma once

#include <Utility/AsyncTaskMonitor.h>

namespace ResultsArchive {

/// Ctrl-C, or the system's request to end, as a cancel of the run. There is one per program.
///
/// On a terminal Ctrl-C reaches 7-Zip as well, so that the step under way ends early. Otherwise
/// that step runs to its end first.
class CancelRequest : public Vorn::Util::AsyncTaskMonitor
{
public:
    /// Catches the signals from now on.
    CancelRequest();

    bool isCanceled() override;

    /// Whether the cancel was made; the processor may not have asked yet.
    bool isRequested() const;

    /// Whether the processor was told to stop.
    bool isTold() const;

private:
    bool told_ = false;
};

} // namespace ResultsArchive
