#include "Cluster.h"

#include "Output.h"
#include "Text.h"

#include <Utility/ClusterInfo.h>
#include <Utility/Log.h>

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>

using namespace Vorn::Util;

namespace ClusterStudy {

namespace {

// Changes the current folder while it exists. Command writes its script there.
class CurrentFolder
{
public:
    explicit CurrentFolder(const QString &folder) { QDir::setCurrent(folder); }
    ~CurrentFolder() { QDir::setCurrent(before_); }

private:
    Q_DISABLE_COPY(CurrentFolder)

    const QString before_ = QDir::currentPath();
};

} // namespace

void logCluster(Log &log, const QString &tools)
{
    const QTemporaryDir scratch;
    const CurrentFolder current(scratch.path());
    const ClusterInfo cluster(&log, QDir::toNativeSeparators(tools));
    if (cluster.computeNodeCount() == 0) {
        log.append(QStringLiteral("The cluster tool named no compute node"));
        return;
    }
    const QString size
        = QStringLiteral("Head node: %1, compute nodes: %2, cores: %3")
              .arg(oneLine(cluster.headNode()), QString::number(cluster.computeNodeCount()),
                   QString::number(cluster.computeCoreCount()));
    log.append(size);
    printLine(stdout, size);
}

} // namespace ClusterStudy
