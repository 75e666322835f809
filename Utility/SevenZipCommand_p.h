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

/// One run of the archiver for a SevenZip, which owns it and gets its results.
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

    /// Waits for the end without a time limit; false when the archiver could not be started. A slot
    /// of the owner's signal may delete the owner, and this command with it, during the call.
    bool waitForFinished();

protected:
    virtual QStringList arguments() = 0;

protected Q_SLOTS:
    virtual void readOutput();
    virtual void handleFinished(int exitCode, QProcess::ExitStatus exitStatus);

protected:
    SevenZip *owner() const { return owner_; }

    /// Makes start() end the command as a fatal error, without starting the archiver.
    void refuseToStart();

    /// Hands every whole line that is there to the reader of the archiver's output.
    void readLines();

private:
    class Results;

    void endRefused();

    int kind_;
    SevenZip *owner_;
    QProcess *process_ = nullptr; // never deleted: that would end a program that still runs
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
    /// More than 32 files are handed over in a list file, which is written here.
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
    /// The owner's files stay, and the entries are appended to them.
    /// Kept for compatibility: see "Files of a listing" in docs/compatibility.md.
    explicit SevenZipListCommand(SevenZip *owner);
    ~SevenZipListCommand() override;

protected:
    QStringList arguments() override;

protected Q_SLOTS:
    void readOutput() override;
};

} // namespace Vorn::Util
