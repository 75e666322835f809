#pragma once

#include <Utility/Export.h>

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Vorn::Util {

class SevenZipCommand;

/// \ingroup commands
/// Creates, extracts and lists archives with the console program of 7-Zip.
///
/// \snippet docs/samples/commands.cpp archive
///
/// \par Operations
/// Each operation has a blocking function, which waits without a time limit, and an asynchronous
/// function ("start..."), which needs the event loop of the thread. Both emit the signal of the
/// operation at its end; the blocking function emits it before it returns.
///
/// \dotfile archive-operation.dot "An operation on an archive"
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
    enum Type : int {
        Type7z = 0, ///< a 7z archive
        TypeZip = 1 ///< a zip archive
    };

    /// The compression method.
    enum Method : int {
        Copy = 0,    ///< no compression
        Deflate = 1, ///< fast, and the usual method of zip archives
        LZMA = 2,    ///< 7z archives only
        LZMA2 = 3,   ///< 7z archives only; like LZMA, but uses more processors
        BZip2 = 4    ///< 7z archives only
    };

    /// The compression level. Any other number is passed to 7-Zip unchanged.
    enum Level : int {
        Store = 0,   ///< no compression
        Fastest = 1, ///< fast, larger archive
        Fast = 3,    ///< between Fastest and Normal
        Normal = 5,  ///< the level that 7-Zip itself uses if it is given none
        Maximum = 7, ///< between Normal and Ultra
        Ultra = 9    ///< smallest archive, most time and memory
    };

    /// The compression mode of LZMA and LZMA2 (7-Zip's switch "-ma="). Any other number is passed
    /// to 7-Zip unchanged.
    enum Mode : int {
        FastMode = 0,  ///< faster, larger archive
        NormalMode = 1 ///< slower, smaller archive
    };

    /// The result of an operation.
    /// Kept for compatibility: see "Exit codes of the archiver" in docs/compatibility.md.
    enum Error : int {
        NoError = 0,   ///< exit code 0, and all exit codes except 1 and 2
        Warning = 1,   ///< exit code 1
        FatalError = 2 ///< exit code 2, a crash, or an incomplete list file
    };

    /// An object with the default settings and without results.
    SevenZip(QObject *parent = nullptr);

    /// If an operation runs, 7-Zip continues, but its end is not handled: no signal is emitted, the
    /// current folder stays changed, and a list file is not removed.
    ~SevenZip() override;

    /// The path of the archive to create, extract or list.
    QString archiveFile() const;

    /// Sets archiveFile(). Give an absolute path.
    void setArchiveFile(const QString &archiveFile);

    /// The current folder of the process while 7-Zip runs. If it is empty, the current folder is
    /// not changed.
    QString currentPath() const;

    /// Sets currentPath(). Names below this folder are passed to 7-Zip without it.
    void setCurrentPath(const QString &currentPath);

    /// The type of the archive. Default: Type7z. A listing sets it to the type that 7-Zip prints.
    Type type() const;

    /// Sets the type of the archive to create. Before compressing a zip archive, also set the
    /// method to Copy or Deflate.
    void setType(Type type);

    /// The compression method. Default: LZMA2. A listing sets it to the method that 7-Zip prints.
    /// 7-Zip prints none for a zip archive and for an empty archive; the method then does not
    /// change.
    Method method() const;

    /// Sets the method of the next compression. For a zip archive it must be Copy or Deflate: any
    /// other method fails an assertion, and in release builds 7-Zip gets an empty argument.
    void setMethod(Method method);

    /// The compression level. Default: Fastest.
    Level level() const;

    /// Sets the level of the next compression.
    void setLevel(Level level);

    /// The compression mode. Default: FastMode.
    Mode mode() const;

    /// Sets the mode of the next compression. It is passed to 7-Zip only for 7z archives with the
    /// method LZMA or LZMA2.
    void setMode(Mode mode);

    /// Whether 7-Zip uses several threads. Default: true.
    bool useThreads() const;

    /// Sets useThreads() for the next compression.
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

    /// Starts to pack \a files into archiveFile() and returns. The end is told by
    /// compressionFinished(); no signal is emitted if 7-Zip cannot be started.
    void startCompressingFiles(const QStringList &files);

    /// Extracts archiveFile() to \a folder. The result is that of compressFiles().
    bool extractFilesTo(const QString &folder);

    /// Starts to extract archiveFile() to \a folder and returns. The end is told by
    /// extractionFinished(); no signal is emitted if 7-Zip cannot be started.
    void startExtractingFilesTo(const QString &folder);

    /// Appends the entries of archiveFile() to files(). The result is that of
    /// compressFiles().
    bool listFiles();

    /// Starts to list archiveFile() and returns. The end is told by listFinished(); no signal is
    /// emitted if 7-Zip cannot be started.
    void startListingFiles();

Q_SIGNALS:
    /// Never emitted.
    void progress(qint64 processed, qint64 total);

    /// Emitted at the end of a compression, also after an error. The results can be read.
    void compressionFinished();

    /// Emitted at the end of an extraction, also after an error. The results can be read.
    void extractionFinished();

    /// Emitted at the end of a listing, also after an error. The results can be read.
    void listFinished();

protected:
    void setError(Error error);              ///< Sets error().
    void setOutput(const QString &output);   ///< Sets output().
    void setFiles(const QStringList &files); ///< Sets files().
    void addFile(const QString &file);       ///< Appends \a file to files().
    void setFolder(const QString &folder);   ///< Sets folder().
    void setCompressedSize(qint64 size);     ///< Sets compressedSize() to \a size bytes.
    void setUncompressedSize(qint64 size);   ///< Sets uncompressedSize() to \a size bytes.

    /// Emits the signal of the operation that was started last.
    /// Kept for compatibility: see "Signal of the latest operation" in docs/compatibility.md.
    void setCommandFinished();

    /// The switch of 7-Zip for \a type: "-t7z" or "-tzip". Any other value fails an assertion; in
    /// release builds the result is empty.
    static QString typeArg(Type type);

    /// The switch of 7-Zip for \a method: for example "-m0=LZMA2" for a 7z archive, "-mm=Deflate"
    /// for a zip archive. A method that archives of this type cannot have here fails an assertion;
    /// in release builds the result is empty.
    static QString methodArg(Type type, Method method);

    /// The switch of 7-Zip for \a level, for example "-mx=1".
    static QString levelArg(Level level);

    /// The switch of 7-Zip for \a mode, for example "-ma=0".
    static QString modeArg(Mode mode);

    /// The switch of 7-Zip for several threads: "-mmt=on" or "-mmt=off".
    static QString multithreadArg(bool useThreads);

    /// The suffix of archives of \a type: "7z" or "zip". Any other value fails an assertion; in
    /// release builds the result is empty.
    static QString fileExt(Type type);

    /// The type for "7z" or "zip". Any other text fails an assertion; in release builds the result
    /// is Type7z.
    /// Kept for compatibility: see "Unknown types and methods" in docs/compatibility.md.
    static Type toType(const QString &text);

    /// The method for its name, in the same letter case. Any other text fails an assertion; in
    /// release builds the result is LZMA2. A method with parameters ("LZMA:16") is such a text.
    /// Kept for compatibility: see "Unknown types and methods" in docs/compatibility.md.
    static Method toMethod(const QString &text);

    /// The size of a file in bytes; 0 for a file that does not exist.
    static qint64 fileSize(const QString &path);

    /// The sum of fileSize() of all \a paths.
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
