#pragma once

#include <Utility/Export.h>

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Vorn::Util {

class SevenZipCommand;

/// Creates, extracts and lists archives with the console program of 7-Zip.
///
/// \code
/// SevenZip archive;
/// archive.setArchiveFile(folder + "/results.7z");
/// archive.setCurrentPath(folder); // the names in the archive are relative to this folder
/// if (!archive.compressFiles({folder + "/mesh.dat", folder + "/log.txt"}))
///     report(archive.error(), archive.output());
/// \endcode
///
/// \par Operations
/// Each operation has a blocking function, which waits without a time limit, and an asynchronous
/// function ("start..."), which needs the event loop of the thread. Both emit the signal of the
/// operation at its end; the blocking function emits it before it returns.
///
/// Run one operation at a time. If currentPath() is not empty, it is the current folder of the
/// process during the operation.
///
/// If 7-Zip cannot be started, no signal is emitted, and the blocking function returns false. The
/// current folder of the process then stays changed.
///
/// \par The 7-Zip program
/// The version of 7-Zip decides which arguments it gets and how its output is read
/// (docs/archives.md). To find the version, a program for Linux is run once. The first operation of
/// a process waits for it, also an asynchronous one: some milliseconds, or 3 seconds for a program
/// that prints no version.
///
/// \par List file
/// More than 32 names are passed in a list file in the folder for temporary files. If the list file
/// cannot be written completely, for example because the disk is full, 7-Zip is not started, and
/// the operation ends with FatalError and its signal. If the list file cannot even be created,
/// 7-Zip is started with its name. Its exit code for the missing file does not count as an error.
/// Kept for compatibility: see "List file that is missing" in docs/compatibility.md.
///
/// \par Dangerous file names
/// Before a name is passed to 7-Zip, every occurrence of currentPath() and the separator after it
/// is removed, also in the middle of the name.
/// Kept for compatibility: see "Names below the current path" in docs/compatibility.md.
///
/// The resulting name has a special meaning for 7-Zip if it
/// - begins with "-": 7-Zip takes it for a switch. The name "-sdel" makes 7-Zip delete the packed
///   files; the name "-x!plain" excludes the file "plain".
/// - begins with "@": 7-Zip takes it for a list file and packs the files named in it.
/// - contains "*" or "?": versions up to 9.33, and a 7z.exe without a version block, pack all files
///   that match. For later versions wildcards are switched off. But then 7-Zip does not report
///   other given names in the same folder that do not exist: list the archive and compare files().
/// - is empty, because the name was currentPath() with a separator: some versions pack the whole
///   current folder, others end with exit code 7.
///
/// An empty list of names packs the whole current folder.
///
/// An absolute path below currentPath() does not help, because its beginning is removed. Pass such
/// a name relative to currentPath() and with "./" before it: "./-sdel". Do this only for names
/// without a folder: 7-Zip stores a file without its folders if the name is absolute or contains
/// the folders "." or "..". A file in a folder whose name begins with "-" or "@" can only be packed
/// together with the whole folder ("./-folder").
///
/// archiveFile() is passed unchanged: give an absolute path.
///
/// In a list file "-" and "@" have no special meaning. But a line break in a name splits it into
/// two names, and 7-Zip removes blanks and double quotes at both ends of a name: of the files
/// "plain" and "plain " it packs the first one twice.
///
/// \par Extraction
/// Existing files are overwritten. If the path of an entry leads out of the destination folder,
/// 7-Zip extracts it to another name inside the folder. files() then contains the name in the
/// archive, which does not exist on the disk.
///
/// \par Encryption
/// A password cannot be given, and 7-Zip cannot ask for one. Extracting encrypted files and listing
/// encrypted names end with FatalError. Adding files to an encrypted archive fails, too, but some
/// versions then end with exit code 255, which does not count as an error.
///
/// \par Other limits
/// Only the first MiB of each line of the output of 7-Zip is read. Use an object only in its own
/// thread.
class VORNUTILITY_EXPORT SevenZip : public QObject
{
    Q_OBJECT

public:
    /// The format of the archive.
    enum Type : int { Type7z = 0, TypeZip = 1 };

    /// The compression method.
    enum Method : int {
        Copy = 0, ///< no compression
        Deflate = 1,
        LZMA = 2,  ///< 7z archives only
        LZMA2 = 3, ///< 7z archives only
        BZip2 = 4  ///< 7z archives only
    };

    /// The compression level. Any other number is passed to 7-Zip unchanged.
    enum Level : int { Store = 0, Fastest = 1, Fast = 3, Normal = 5, Maximum = 7, Ultra = 9 };

    /// The compression mode of LZMA and LZMA2 (7-Zip's switch "-ma="). Any other number is passed
    /// to 7-Zip unchanged.
    enum Mode : int { FastMode = 0, NormalMode = 1 };

    /// The result of an operation.
    /// Kept for compatibility: see "Exit codes of the archiver" in docs/compatibility.md.
    enum Error : int {
        NoError = 0,   ///< exit code 0, and all exit codes except 1 and 2
        Warning = 1,   ///< exit code 1
        FatalError = 2 ///< exit code 2, a crash, or an incomplete list file
    };

    SevenZip(QObject *parent = nullptr);
    ~SevenZip() override;

    /// The path of the archive to create, extract or list.
    QString archiveFile() const;
    void setArchiveFile(const QString &archiveFile);

    /// The current folder of the process while 7-Zip runs. If it is empty, the current folder is
    /// not changed.
    QString currentPath() const;
    void setCurrentPath(const QString &currentPath);

    /// Type and method of the archive. Default: Type7z and LZMA2. Before compressing a zip archive,
    /// set the method to Copy or Deflate.
    ///
    /// A listing sets type and method to those that 7-Zip prints. It prints no method for a zip
    /// archive and for an empty archive; method() then does not change.
    Type type() const;
    void setType(Type type);
    Method method() const;
    void setMethod(Method method);

    /// Default: Fastest.
    Level level() const;
    void setLevel(Level level);

    /// Default: FastMode.
    Mode mode() const;
    void setMode(Mode mode);

    /// Whether 7-Zip uses several threads. Default: true.
    bool useThreads() const;
    void setUseThreads(bool useThreads);

    /// Has no effect.
    void enableProgressUpdates(bool enable);

    /// The result of the last operation. NoError while an operation runs.
    Error error() const;

    /// Whether error() is NoError.
    bool isOk() const;

    /// The last part of the output of 7-Zip in a compression, with its error messages. Empty after
    /// other operations.
    QString output() const;

    /// After a compression: the names that were passed. After an extraction: the names that 7-Zip
    /// printed. A listing appends the entries of the archive to the names that are already there.
    /// Kept for compatibility: see "Files of a listing" in docs/compatibility.md.
    QStringList files() const;

    /// The folder of the last extraction.
    QString folder() const;

    /// The size of the archive in bytes. After an extraction or a listing: the number that 7-Zip
    /// printed; if it printed none, the size does not change.
    qint64 compressedSize() const;

    /// After a compression: the sum of the sizes of files() in bytes. A folder counts with the size
    /// of its own entry in the file system (for example 4096 or 0), without its content. After an
    /// extraction or a listing: the number that 7-Zip printed; if it printed none, the size does
    /// not change.
    qint64 uncompressedSize() const;

    /// Packs \a files into archiveFile(). Returns true if 7-Zip was started and error() is NoError.
    /// This includes exit codes such as 7 (wrong command line), 8 (not enough memory) and 255
    /// (stopped by the user).
    bool compressFiles(const QStringList &files);
    void startCompressingFiles(const QStringList &files);

    /// Extracts archiveFile() to \a folder. The result is as above.
    bool extractFilesTo(const QString &folder);
    void startExtractingFilesTo(const QString &folder);

    /// Appends the entries of archiveFile() to files(). The result is as above.
    bool listFiles();
    void startListingFiles();

Q_SIGNALS:
    /// Never emitted.
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

    /// Emits the signal of the operation that was started last.
    void setCommandFinished();

    // These functions convert settings to switches of 7-Zip and texts of 7-Zip to settings. An
    // unknown value fails an assertion. In release builds the result is then an empty text, Type7z
    // or LZMA2. A method with parameters ("LZMA:16") is an unknown value.
    static QString typeArg(Type type);
    static QString methodArg(Type type, Method method);
    static QString levelArg(Level level);
    static QString modeArg(Mode mode);
    static QString multithreadArg(bool useThreads);
    static QString fileExt(Type type);
    static Type toType(const QString &text);
    static Method toMethod(const QString &text);

    /// In bytes; 0 for a file that does not exist.
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
