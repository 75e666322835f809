#pragma once

#include <Utility/Export.h>

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Vorn::Util {

class SevenZipCommand;

/// Packs, unpacks and lists archives with the 7-Zip console program.
///
/// \code
/// SevenZip archive;
/// archive.setArchiveFile(folder + "/results.7z");
/// archive.setCurrentPath(folder);                       // names in the archive are relative to it
/// if (!archive.compressFiles({folder + "/mesh.dat", folder + "/log.txt"}))
///     report(archive.error(), archive.output());
/// \endcode
///
/// Each operation has a blocking form, which waits without a time limit, and an asynchronous one,
/// which ends with its signal and needs the thread's event loop. The blocking form emits the
/// signal too, before it returns. One operation at a time: while it runs, the current folder of
/// the process is currentPath(), if that is not empty.
///
/// A 7-Zip that cannot be started emits no signal; the blocking form then returns false. After a
/// start that failed the current folder stays changed.
///
/// Names are handed on as they are: 7-Zip reads one that begins with "-" or "@" as a switch or a
/// list file. Archives are extracted with 7-Zip's own care for paths; existing files are
/// overwritten.
///
/// Thread: that of the object. Sizes are bytes.
class VORNUTILITY_EXPORT SevenZip : public QObject
{
    Q_OBJECT

public:
    enum Type : int { Type7z = 0, TypeZip = 1 };

    enum Method : int {
        Copy = 0, ///< stored
        Deflate = 1,
        LZMA = 2,  ///< 7z archives only
        LZMA2 = 3, ///< 7z archives only
        BZip2 = 4  ///< 7z archives only
    };

    /// How hard to compress. Any other number is handed to 7-Zip unchanged.
    enum Level : int { Store = 0, Fastest = 1, Fast = 3, Normal = 5, Maximum = 7, Ultra = 9 };

    /// 7-Zip's "-ma=" value, for LZMA and LZMA2. Any other number is handed on unchanged.
    enum Mode : int { FastMode = 0, NormalMode = 1 };

    enum Error : int {
        NoError = 0,   ///< also for exit codes other than 1 and 2
        Warning = 1,   ///< exit code 1
        FatalError = 2 ///< exit code 2, or a crash
    };

    SevenZip(QObject *parent = nullptr);
    ~SevenZip() override;

    QString archiveFile() const;
    void setArchiveFile(const QString &archiveFile);

    /// The current folder while 7-Zip runs; empty to stay where the process is.
    QString currentPath() const;
    void setCurrentPath(const QString &currentPath);

    /// Type7z and LZMA2 at first. A listing sets both from the archive.
    Type type() const;
    void setType(Type type);
    Method method() const;
    void setMethod(Method method);

    /// Fastest at first.
    Level level() const;
    void setLevel(Level level);

    /// FastMode at first.
    Mode mode() const;
    void setMode(Mode mode);

    /// On at first.
    bool useThreads() const;
    void setUseThreads(bool useThreads);

    /// Stored for the callers' use; it changes nothing.
    void enableProgressUpdates(bool enable);

    /// The result of the last operation.
    Error error() const;
    bool isOk() const;

    /// The last block of a compression's output, standard error included.
    QString output() const;

    /// After a compression the files given, after an extraction the files reported; a listing
    /// appends the entries of the archive to what was there.
    QStringList files() const;

    /// The folder of the last extraction.
    QString folder() const;

    /// Bytes: after a compression those of the archive and of the files on disk, after an
    /// extraction or a listing what 7-Zip printed of them. An operation that tells nothing leaves
    /// them as they were.
    qint64 compressedSize() const;
    qint64 uncompressedSize() const;

    /// True when 7-Zip ran and error() is NoError.
    bool compressFiles(const QStringList &files);
    void startCompressingFiles(const QStringList &files);

    bool extractFilesTo(const QString &folder);
    void startExtractingFilesTo(const QString &folder);

    bool listFiles();
    void startListingFiles();

Q_SIGNALS:
    /// Reserved; never emitted.
    void progress(qint64 processed, qint64 total);
    void compressionFinished();
    void extractionFinished();
    void listFinished();

protected:
    void setError(Error error);
    void setOutput(const QString &output);
    void setFiles(const QStringList &files);
    void addFile(const QString &file);
    void setFolder(const QString &folder);
    void setCompressedSize(qint64 size);
    void setUncompressedSize(qint64 size);

    /// Emits the signal that belongs to the latest operation.
    void setCommandFinished();

    // Switches of the command line, and back from texts. What has no text fails an assertion; in
    // release builds it gives an empty text, Type7z or LZMA2, also for a method that carries
    // parameters ("LZMA:16").
    static QString typeArg(Type type);
    static QString methodArg(Type type, Method method);
    static QString levelArg(Level level);
    static QString modeArg(Mode mode);
    static QString multithreadArg(bool useThreads);
    static QString fileExt(Type type);
    static Type toType(const QString &text);
    static Method toMethod(const QString &text);

    /// Bytes; 0 for a file that does not exist.
    static qint64 fileSize(const QString &path);
    static qint64 fileSizes(const QStringList &paths);

private:
    Q_DISABLE_COPY(SevenZip)
    friend class SevenZipCommand;
    friend class SevenZipCompressCommand;
    friend class SevenZipExtractCommand;
    friend class SevenZipListCommand;

    void start(SevenZipCommand *command);
    bool run(SevenZipCommand *command);

    QString archiveFile_;
    QString currentPath_;
    bool progressUpdates_ = false;
    Type type_ = Type7z;
    Method method_ = LZMA2;
    Level level_ = Fastest;
    Mode mode_ = FastMode;
    bool useThreads_ = true;
    Error error_ = NoError;
    QString output_;
    QStringList files_;
    QString folder_;
    qint64 compressedSize_ = 0;
    qint64 uncompressedSize_ = 0;
    SevenZipCommand *currentCommand_ = nullptr; // a child of this object
};

} // namespace Vorn::Util
