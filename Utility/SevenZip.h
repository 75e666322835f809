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
/// The version of 7-Zip decides how it is called and read (docs/archives.md). A program for Linux is
/// run once to learn its version. The first operation of a process waits for that, the asynchronous
/// form too: some milliseconds, at most 3 seconds for a program that tells none.
///
/// A 7-Zip that cannot be started emits no signal; the blocking form then returns false. After a
/// start that failed the current folder stays changed.
///
/// More than 32 files are named in a list file in the temporary folder. When that file cannot be
/// written completely, as on a full disk, 7-Zip is not started: the operation ends with FatalError
/// and its signal. (A list file that cannot even be created is left to 7-Zip, whose exit code for
/// it does not count as an error.)
///
/// Names are passed to 7-Zip unchanged, except that every occurrence of currentPath() and the
/// separator after it is removed, wherever it stands in the name. What 7-Zip then receives is
/// dangerous when it
/// - begins with "-", which is a switch: a file "-sdel" makes 7-Zip delete the files that it packs,
///   and "-x!plain" leaves the file "plain" out;
/// - begins with "@", which is a list file: 7-Zip packs the files that it names;
/// - holds "*" or "?", and 7-Zip is a version up to 9.33 or a 7z.exe without a version block: it
///   packs all names that match. (Later versions are told to take such a name as it is, but then no
///   longer report other files of that folder as missing: compare files() after a listing.)
/// - is empty, as the name of currentPath() with a separator after it: some versions of 7-Zip pack
///   the whole current folder then, others end with exit code 7.
///
/// An empty list of names packs the whole current folder.
///
/// An absolute path below currentPath() is no protection, because its front is removed. Pass such a
/// name relative to currentPath() and with "./" in front: "./-sdel". Do this only for a name
/// without a folder: 7-Zip stores a file without its folders when the name is absolute or holds "."
/// or ".." as a folder. A file in a folder whose name begins with "-" or "@" can be packed only
/// with the whole folder ("./-folder"). Of archiveFile() nothing is removed: give an absolute path.
///
/// In a list file the first two are ordinary names, but a line break in a name makes two names of
/// it, and 7-Zip removes blanks and double quotes around a name: of the files "plain" and "plain "
/// it then packs the first one twice.
///
/// An entry of an archive whose path leads out of the folder is extracted to another name inside
/// it; files() holds the name that the archive tells, which then does not exist. Existing files are
/// overwritten.
///
/// There is no way to give a password, and 7-Zip cannot ask for one. To extract encrypted files or
/// to list encrypted names is a FatalError. To add files to an encrypted archive fails too, but
/// some versions end with exit code 255 then, which does not count as an error.
///
/// Of a line of 7-Zip's output the first mebibyte is read.
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
        FatalError = 2 ///< exit code 2, a crash, or an incomplete list file
    };

    SevenZip(QObject *parent = nullptr);
    ~SevenZip() override;

    QString archiveFile() const;
    void setArchiveFile(const QString &archiveFile);

    /// The current folder while 7-Zip runs; empty to stay where the process is.
    QString currentPath() const;
    void setCurrentPath(const QString &currentPath);

    /// Type7z and LZMA2 at first. A listing sets each of the two when the archive tells it: a zip
    /// archive and an empty one tell no method, which then stays as it was. A zip archive takes
    /// Copy and Deflate only: set one of them before compressing.
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

    /// Bytes. After a compression: the size of the archive, and the sum of the sizes of files(),
    /// where a folder counts as its own entry in the file system (4096, for example, or 0), not as
    /// what it contains. After an extraction or a listing: what 7-Zip printed; when it printed
    /// nothing, they stay as they were.
    qint64 compressedSize() const;
    qint64 uncompressedSize() const;

    /// True when 7-Zip ran and error() is NoError. That includes every exit code other than 1 and
    /// 2: also 7 (a wrong command line), 8 (not enough memory) and 255 (stopped by the user).
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
