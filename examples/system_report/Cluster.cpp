#include "Cluster.h"

#include "Text.h"

#include <Utility/ClusterInfo.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

#include <cstdlib>

using namespace Vorn::Util;

namespace SystemReport {

namespace {

// ClusterInfo waits for 30 seconds, longer if a tool on Windows prints without an end.
constexpr int TimeLimit = 40000; // milliseconds

const QString NodesKey = QStringLiteral("nodes");

bool hasTool(const QString &folder)
{
    const QDir dir(folder);
    return QFileInfo(dir.filePath(QStringLiteral("NodeInformation.exe"))).isFile()
        || QFileInfo(dir.filePath(QStringLiteral("NodeInformation"))).isFile();
}

QString roles(const NodeInfo &node)
{
    if (node.isHeadNode && node.isComputeNode)
        return QStringLiteral("head and compute node");
    return node.isHeadNode ? QStringLiteral("head node") : QStringLiteral("compute node");
}

QJsonArray row(const NodeInfo &node)
{
    return {node.name, roles(node), QString::number(node.cores), QString::number(node.sockets),
            QString::number(node.quantity)};
}

// What this program prints as a child process; empty if it does not end in time.
QByteArray childOutput(const QString &tools)
{
    const QTemporaryDir scratch; // ClusterInfo writes a script to the current folder
    QProcess child;
    child.setWorkingDirectory(scratch.path());
    child.setStandardErrorFile(QProcess::nullDevice());
    child.start(QCoreApplication::applicationFilePath(),
                {QString::fromLatin1(PrintClusterOption), tools});
    const bool hasEnded
        = child.waitForFinished(TimeLimit) && child.exitStatus() == QProcess::NormalExit;
    if (!hasEnded) {
        child.kill();
        child.waitForFinished();
        return QByteArray();
    }
    return child.readAllStandardOutput();
}

} // namespace

int printCluster(const QString &tools)
{
    const ClusterInfo cluster(nullptr, QDir::toNativeSeparators(tools));
    QJsonArray rows;
    const QList<NodeInfo> headNodes = cluster.headNodes();
    for (const NodeInfo &node : headNodes)
        rows.append(row(node));
    const QList<NodeInfo> computeNodes = cluster.computeNodes();
    for (const NodeInfo &node : computeNodes) {
        if (!node.isHeadNode)
            rows.append(row(node));
    }
    const QString summary = QStringLiteral("Compute nodes: %1, cores: %2.")
                                .arg(QString::number(cluster.computeNodeCount()),
                                     QString::number(cluster.computeCoreCount()));
    const QJsonObject object{{NodesKey, rows}, {QStringLiteral("summary"), summary}};
    const QByteArray json = QJsonDocument(object).toJson(QJsonDocument::Compact);
    std::fputs(json.constData(), stdout);
    return std::fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

Section cluster(const QString &tools)
{
    Section section;
    section.title = QStringLiteral("Cluster");
    if (!hasTool(tools)) {
        section.remark = QStringLiteral("Left out: there is no cluster tool in %1. Name its folder "
                                        "with --cluster-tools.")
                             .arg(shownPath(tools));
        return section;
    }
    const QByteArray output = childOutput(tools);
    const QJsonObject object = QJsonDocument::fromJson(output).object();
    const QJsonArray rows = object.value(NodesKey).toArray();
    if (output.isEmpty() || rows.isEmpty()) {
        section.remark = output.isEmpty()
            ? QStringLiteral("Left out: the cluster tool does not end.")
            : QStringLiteral("Left out: the cluster tool named no node.");
        return section;
    }
    section.remark = object.value(QStringLiteral("summary")).toString();
    section.columns
        = QStringList{QStringLiteral("Node"), QStringLiteral("Role"), QStringLiteral("Cores"),
                      QStringLiteral("Sockets"), QStringLiteral("Reported number")};
    for (const QJsonValue &node : rows) {
        QStringList cells;
        const QJsonArray texts = node.toArray();
        for (const QJsonValue &text : texts)
            cells << text.toString();
        section.rows << cells;
    }
    return section;
}

} // namespace SystemReport
