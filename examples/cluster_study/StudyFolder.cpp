#include "StudyFolder.h"

#include "Platform.h"
#include "Text.h"

#include <Utility/System.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSaveFile>
#include <QtCore/QSysInfo>

using namespace Vorn::Util;

namespace ClusterStudy {

namespace {

constexpr qint64 MaxResultFile = 1 << 20; // bytes
constexpr qint64 MaxOwnFile = 1 << 24;

const QString ResultFile = QStringLiteral("result.txt");
const QString StudyFile = QStringLiteral("study.json");
const QString LockFile = QStringLiteral("study.lock");
const QString CasesKey = QStringLiteral("cases");

// Empty if the file cannot be read or is larger than \a limit.
QByteArray contentOf(const QString &path, qint64 limit)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly) || file.size() > limit)
        return QByteArray();
    return file.read(limit);
}

QString writeWhole(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    // flush(): commit() does not notice that the last bytes do not fit on the disk.
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.flush()
        || !file.commit())
        return QStringLiteral("%1 cannot be written: %2").arg(shown(path), file.errorString());
    return QString();
}

int digitsFor(int count)
{
    return qMax(4, static_cast<int>(QString::number(count).size()));
}

QJsonObject description(const Study &study)
{
    QJsonObject object;
    object.insert(QStringLiteral("program"), study.program);
    object.insert(QStringLiteral("arguments"), QJsonArray::fromStringList(study.arguments));
    object.insert(QStringLiteral("parameters"), QJsonArray::fromStringList(study.cases.names));
    object.insert(CasesKey, study.cases.count());
    object.insert(QStringLiteral("fingerprint"), QString::fromLatin1(fingerprint(study.cases)));
    return object;
}

} // namespace

StudyFolder::StudyFolder(const QString &path)
    : path_(path)
{
}

QString StudyFolder::create(const Study &study)
{
    digits_ = digitsFor(study.cases.count());
    if (!QDir().mkpath(path_))
        return QStringLiteral("The output folder cannot be created: %1").arg(shown(path_));
    QString problem = lock();
    if (!problem.isEmpty())
        return problem;
    // Nothing but the lock may be here, also of a run that was killed before it wrote more.
    const QDir::Filters all = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    const QStringList entries = QDir(path_).entryList(all);
    if (entries.contains(StudyFile)) {
        return QStringLiteral("The output folder contains a study: use --resume to continue it, or "
                              "another --output: %1")
            .arg(shown(path_));
    }
    if (entries != QStringList(LockFile)) {
        return QStringLiteral("The output folder is not empty: use another --output, or remove its "
                              "files: %1")
            .arg(shown(path_));
    }
    return writeFile(StudyFile, QJsonDocument(description(study)).toJson());
}

QString StudyFolder::resume(const Study &study)
{
    digits_ = digitsFor(study.cases.count());
    if (!QFileInfo(file(StudyFile)).isFile())
        return QStringLiteral("There is no study to resume, start it without --resume: %1")
            .arg(shown(path_));
    QString problem = lock();
    if (!problem.isEmpty())
        return problem;
    const QJsonObject before = QJsonDocument::fromJson(readFile(StudyFile)).object();
    if (before != description(study))
        return QStringLiteral("The cases or the command are not those of the study in %1")
            .arg(shown(path_));
    return QString();
}

QString StudyFolder::open()
{
    const QJsonObject study = QJsonDocument::fromJson(readFile(StudyFile)).object();
    const int count = study.value(CasesKey).toInt();
    if (count < 1)
        return QStringLiteral("There is no study in %1").arg(shown(path_));
    digits_ = digitsFor(count);
    return QString();
}

QString StudyFolder::path() const
{
    return path_;
}

QString StudyFolder::file(const QString &name) const
{
    return path_ + QLatin1Char('/') + name;
}

QString StudyFolder::caseName(int number) const
{
    return QStringLiteral("cases/%1").arg(number, digits_, 10, QLatin1Char('0'));
}

QString StudyFolder::caseFolder(int number) const
{
    return file(caseName(number));
}

QString StudyFolder::prepareCase(int number) const
{
    const QString folder = caseFolder(number);
    // removeDir() leaves pipes, sockets and broken links. It comes first because on Windows
    // removeRecursively() would follow the junctions in the folder.
    if (QFileInfo::exists(folder) && !System::removeDir(folder, false, QStringList())
        && !QDir(folder).removeRecursively())
        return QStringLiteral("%1 cannot be removed").arg(shown(folder));
    if (!QDir().mkpath(folder))
        return QStringLiteral("%1 cannot be created").arg(shown(folder));
    return removeEnd(number);
}

QString StudyFolder::writeEnd(int number, const CaseEnd &end) const
{
    return writeFile(endFile(number), endFileContent(end, number));
}

CaseEnd StudyFolder::readEnd(int number) const
{
    return readEndFile(readFile(endFile(number)), number);
}

QString StudyFolder::removeEnd(int number) const
{
    const QString path = file(endFile(number));
    if (QFileInfo::exists(path) && !QFile::remove(path))
        return QStringLiteral("%1 cannot be removed").arg(shown(path));
    return QString();
}

Results StudyFolder::readResults(int number, QString &ignored) const
{
    const QString path = caseFolder(number) + QLatin1Char('/') + ResultFile;
    if (QFileInfo(path).size() > MaxResultFile) {
        ignored = QStringLiteral("%1 has more than %2 bytes and is not read")
                      .arg(ResultFile, QString::number(MaxResultFile));
    }
    return ClusterStudy::readResults(contentOf(path, MaxResultFile), ignored);
}

QString StudyFolder::writeFile(const QString &name, const QByteArray &content) const
{
    return writeWhole(file(name), content);
}

QByteArray StudyFolder::readFile(const QString &name) const
{
    return contentOf(file(name), MaxOwnFile);
}

QString StudyFolder::endFile(int number) const
{
    // Not in the folder of the case, with which the case may do what it wants.
    return caseName(number) + QStringLiteral(".json");
}

QString StudyFolder::lock()
{
    lock_ = std::make_unique<QLockFile>(file(LockFile));
    lock_->setStaleLockTime(0); // a lock never expires while its process runs
    if (lock_->tryLock() || (removeLockOfEndedProcess() && lock_->tryLock()))
        return QString();
    if (lock_->error() != QLockFile::LockFailedError)
        return QStringLiteral("The output folder cannot be written: %1").arg(shown(path_));
    qint64 process = 0;
    QString host;
    QString application;
    lock_->getLockInfo(&process, &host, &application);
    return QStringLiteral("Another run uses the output folder: process %1 on %2. If it has ended, "
                          "remove %3")
        .arg(QString::number(process), oneLine(host), shown(file(LockFile)));
}

// QLockFile does this itself, but not if a child process holds the file: one that was forked, and
// whose parent was killed before the child became another program.
bool StudyFolder::removeLockOfEndedProcess() const
{
    QLockFile onlyOne(file(LockFile + QStringLiteral(".remove")));
    qint64 process = 0;
    QString host;
    QString application;
    return onlyOne.tryLock() && lock_->getLockInfo(&process, &host, &application)
        && host == QSysInfo::machineHostName() && !isRunning(process)
        && QFile::remove(file(LockFile));
}

} // namespace ClusterStudy
