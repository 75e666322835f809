#pragma once

#include <Utility/Formats/ArchiverOutput_p.h>
#include <Utility/Formats/LineSplitter_p.h>

#include <QtCore/QObject>
#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

namespace Vorn::Util {

class SevenZip;

/// One run of the archiver. The SevenZip object that it is created for owns it and stores its
/// results.
class SevenZipCommand : public QObject
{
    Q_OBJECT

public:
    enum Kind : int { Compress = 0, Extract = 1, List = 2 };

    SevenZipCommand(int kind, SevenZip *owner);
    ~SevenZipCommand() override;

    int kind() const;

    /// Starts the archiver and returns. Call it once.
    void start();

    /// Waits for the end without a time limit. Returns false if the archiver could not be started.
    /// During the call a slot may delete the owner, and this command with it.
    bool waitForFinished();

protected:
    virtual QStringList arguments() = 0;

protected Q_SLOTS:
    virtual void readOutput();
    virtual void handleFinished(int exitCode, QProcess::ExitStatus exitStatus);

protected:
    SevenZip *owner() const { return owner_; }

    /// Makes start() end with a fatal error instead of starting the archiver.
    void refuseToStart();

    /// Reads the complete lines of the available output with the reader.
    void readLines();

private:
    class Results;

    void endRefused();

    int kind_;
    SevenZip *owner_;
    QProcess *process_ = nullptr; // never deleted: its destructor would kill a running archiver
    QString savedPath_;
    bool isRefused_ = false;
    Formats::LineSplitter lines_;
    std::unique_ptr<Results> results_;
    std::unique_ptr<Formats::ArchiverReader> reader_;
};

class SevenZipCompressCommand : public SevenZipCommand
{
    Q_OBJECT

public:
    /// Writes a list file if there are more than 32 files.
    SevenZipCompressCommand(const QStringList &files, SevenZip *owner);
    ~SevenZipCompressCommand() override;

protected:
    QStringList arguments() override;

protected Q_SLOTS:
    void handleFinished(int exitCode, QProcess::ExitStatus exitStatus) override;

private:
    QStringList fileNames() const;
    void writeListFile();

    QString listFile_;
};

class SevenZipExtractCommand : public SevenZipCommand
{
    Q_OBJECT

public:
    SevenZipExtractCommand(const QString &folder, SevenZip *owner);
    ~SevenZipExtractCommand() override;

protected:
    QStringList arguments() override;

protected Q_SLOTS:
    void readOutput() override;
};

class SevenZipListCommand : public SevenZipCommand
{
    Q_OBJECT

public:
    /// Appends the entries of the archive to the files of \a owner.
    /// Kept for compatibility: see "Files of a listing" in docs/compatibility.md.
    explicit SevenZipListCommand(SevenZip *owner);
    ~SevenZipListCommand() override;

protected:
    QStringList arguments() override;

protected Q_SLOTS:
    void readOutput() override;
};

} // namespace Vorn::Util
