#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QTimer>

namespace ClusterStudy {

struct Progress;

/// Shows the progress while the event loop runs: on a terminal in a line that is updated, otherwise
/// as a line from time to time.
class Display : public QObject
{
public:
    explicit Display(const Progress &progress);

private:
    void show();

    const Progress &progress_;
    const bool isTerminal_;
    QElapsedTimer time_;
    QTimer tick_;
};

} // namespace ClusterStudy
