#pragma once

#include "FolderFiles.h"
#include "Options.h"

#include <Utility/CpuCounter.h>

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

#include <memory>

namespace Vorn::Util {
class Log;
class SevenZip;
} // namespace Vorn::Util

namespace ResultsArchive {

class CancelRequest;

/// What the steps of a run know and do. A step returns what went wrong, empty when nothing did.
class Job : public QObject
{
    Q_OBJECT

public:
    /// Neither the log nor the cancel is owned.
    Job(const Options &options, const CancelRequest &cancel, Vorn::Util::Log &log);

    Q_INVOKABLE void inspectFolder();
    QString logMachine();
    QString logCluster() const;
    QString checkStart() const;
    QString checkSizes() const;

    QString startPacking(Vorn::Util::SevenZip &archive);
    QString checkPacking(const Vorn::Util::SevenZip &archive);

    QString startListing(Vorn::Util::SevenZip &archive) const;
    QString checkListing(const Vorn::Util::SevenZip &archive) const;

    QString startUnpacking(Vorn::Util::SevenZip &archive) const;
    QString checkUnpacking(const Vorn::Util::SevenZip &archive) const;

    QStringList names() const;
    QString compareFile(const QString &name) const;

    /// The last of the proofs.
    QString listWithSystem();

    /// Removes what a run leaves: the temporary files and, unless everything went well, the
    /// archive.
    QString cleanUp();

    /// Whether the archive is there and proven. Settled by cleanUp().
    bool isComplete() const;

    /// One line about a complete run.
    QString summary(qint64 milliseconds) const;

private:
    QString unpackFolder() const;

    Options options_;
    const CancelRequest &cancel_;
    Vorn::Util::Log &log_;
    FolderFiles files_;
    Vorn::Util::CpuCounter load_{Vorn::Util::CpuCounter::CpuPercent};
    std::unique_ptr<QTemporaryDir> scratch_;
    qint64 packedBytes_ = 0;
    bool startedPacking_ = false;
    bool proven_ = false;
    bool complete_ = false;
};

} // namespace ResultsArchive
