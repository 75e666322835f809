#include <Utility/Log.h>

#include <Utility/Formats/TruncationOffset_p.h>
#include <Utility/LogTruncation_p.h>
#include <Utility/Platform/LogFile.h>
#include <Utility/QtVersion_p.h>

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QMutexLocker>
#include <QtCore/QTextStream>
#include <QtCore/QVarLengthArray>

#include <algorithm>
#include <array>
#include <type_traits>

namespace Vorn::Util {

const qint64 Log::MaxLogSize = 5242880;
const qint64 Log::AmountToTruncate = Formats::AmountToTruncate;
const int Log::MaxLogCount = 10;

namespace {

// The last prefix of this thread in UTF-8, which is used for all lines of the same second:
// formatting the local time takes several times as long as writing a line. The type has no
// destructor, so that destructors of static objects can still write to a log.
struct LastPrefix
{
    qint64 second = -1;
    Log::TimeStamp form = Log::NoTimeStamp;
    QtVersion::Size length = 0;
    std::array<char, 128> text{};
};
static_assert(std::is_trivially_destructible<LastPrefix>::value);
thread_local LastPrefix lastPrefix;

// A line in UTF-8. A line of usual length needs no memory from the heap.
using Line = QVarLengthArray<char, 512>;

void appendBytes(Line &line, const QByteArray &bytes)
{
    line.append(bytes.constData(), bytes.size());
}

void appendUtf8(Line &line, const QString &text)
{
    constexpr ushort LastAscii = 0x7f;
    ushort allBits = 0;
    for (const QChar character : text)
        allBits |= character.unicode();
    if (allBits > LastAscii) {
        appendBytes(line, text.toUtf8());
        return;
    }
    const auto length = line.size();
    line.resize(length + text.size());
    std::transform(text.cbegin(), text.cend(), line.begin() + length,
                   [](QChar character) { return static_cast<char>(character.unicode()); });
}

// Whether the buffer of \a file is empty. After a failure it keeps what could not be written.
bool isBufferEmpty(const QFile &file)
{
    return file.bytesToWrite() == 0;
}

// Writes \a line without the buffer of \a file. Returns how many bytes were written: none if older
// bytes are in the buffer, which must be written first.
qint64 writeUnbuffered(const QFile &file, const Line &line)
{
    if (!isBufferEmpty(file))
        return 0;
    return std::max<qint64>(Platform::writeDirectly(file, line.constData(), line.size()), 0);
}

// A name filter for QDir that matches exactly \a text.
QString escapeWildcards(const QString &text)
{
    QString escaped;
    for (const QChar character : text) {
        if (character == QLatin1Char('*') || character == QLatin1Char('?')
            || character == QLatin1Char('[')) {
            escaped += QLatin1Char('[') + character + QLatin1Char(']');
        } else {
            escaped += character;
        }
    }
    return escaped;
}

} // namespace

Log::Log()
    : file_(std::make_unique<QFile>())
{
}

Log::Log(const QString &name, Log::FileTimeStamp fileTimeStamp)
    : Log()
{
    setName(name, fileTimeStamp);
}

Log::~Log() = default;

void Log::setName(const QString &name, Log::FileTimeStamp fileTimeStamp)
{
    const QFileInfo info(name);
    path_ = info.path();
    baseName_ = info.completeBaseName();
    suffix_ = info.suffix();
    fileTimeStamp_ = fileTimeStamp;
    name_ = name;
    if (fileTimeStamp == WithFileTimeStamp) {
        fileTimeStampString_ = getFileTimeStamp();
        name_ = QStringLiteral("%1/%2_%3.%4").arg(path_, baseName_, fileTimeStampString_, suffix_);
        removeOldTimeStampedLogFiles();
    }
    file_->setFileName(name_);
}

QString Log::name() const
{
    return file_->fileName();
}

bool Log::open(bool append)
{
    checkSizeAndTruncate();
    if (file_->isOpen())
        return true;
    QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::Text;
    if (append)
        mode |= QIODevice::Append;
    if (!file_->open(mode))
        return false;
    // If this QFile was open before, its next write goes back to the beginning, over lines that
    // were written directly since. An explicit seek prevents this.
    if (!append && !file_->isSequential())
        file_->seek(0);
    return true;
}

void Log::close()
{
    file_->close();
}

void Log::flush()
{
    file_->flush();
}

void Log::append(const QString &text)
{
    const QMutexLocker locker(&mutex_);
    checkSizeAndTruncate();
    fastAppend(text);
}

void Log::fastAppend(const QString &text)
{
    if (!text.isEmpty() && text.back().isSpace()) {
        fastAppend(rstrip(text));
        return;
    }
    Line line;
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    LastPrefix &last = lastPrefix;
    if (last.second == now && last.form == timeStamp_) {
        line.append(last.text.data(), last.length);
    } else {
        appendBytes(line, getPrefix().toUtf8());
        if (line.size() <= static_cast<int>(last.text.size())) {
            last.second = now;
            last.form = timeStamp_;
            last.length = line.size();
            std::copy(line.cbegin(), line.cend(), last.text.begin());
        }
    }
    // The blank is also written if the prefix is empty.
    // Kept for compatibility: see "Log lines" in docs/compatibility.md.
    line.append(' ');
    appendUtf8(line, text);
    line.append('\n');
    const qint64 written = writeUnbuffered(*file_, line);
    if (written < line.size()) {
        file_->write(line.constData() + written, line.size() - written);
        file_->flush();
    }
}

Log &Log::operator<<(const QString &text)
{
    checkSizeAndTruncate();
    write<const QString &>(text);
    return *this;
}

Log &Log::operator<<(char character)
{
    checkSizeAndTruncate();
    write(character);
    return *this;
}

Log &Log::operator<<(int number)
{
    checkSizeAndTruncate();
    write(number);
    return *this;
}

Log &Log::operator<<(double number)
{
    checkSizeAndTruncate();
    write(number);
    return *this;
}

void Log::setTimeStamp(Log::TimeStamp timeStamp)
{
    timeStamp_ = timeStamp;
}

Log::TimeStamp Log::timeStamp() const
{
    return timeStamp_;
}

QString Log::fileTimeStampString() const
{
    return fileTimeStamp_ == WithFileTimeStamp ? fileTimeStampString_ : QString();
}

bool Log::removeOldTimeStampedLogFiles(const QString &path, const QString &baseName,
                                       const QString &suffix, int maxCount)
{
    QDir folder(path);
    if (!folder.exists())
        return false;
    const QStringList filter{
        QStringLiteral("%1_20*.%2").arg(escapeWildcards(baseName), escapeWildcards(suffix))};
    const QDir::Filters plainFiles = QDir::Files | QDir::Hidden;

    // The result is that of the last deletion only.
    // Kept for compatibility: see "Old logs" in docs/compatibility.md.
    bool ok = true;
    const QFileInfoList all = folder.entryInfoList(filter, plainFiles, QDir::Unsorted);
    for (const QFileInfo &file : all) {
        if (file.size() == 0)
            ok = folder.remove(file.fileName());
    }
    QStringList names = folder.entryList(filter, plainFiles, QDir::Name);
    while (!names.isEmpty() && names.size() > maxCount)
        ok = folder.remove(names.takeFirst());
    return ok;
}

void Log::checkSizeAndTruncate()
{
    if (getSize() <= MaxLogSize)
        return;
    if (!file_->isOpen()) {
        truncate();
        return;
    }
    // This closes the log. file_ must not be null during the truncation, because a Qt message
    // handler may write to the log.
    file_ = std::make_unique<QFile>(name_);
    truncate();
    file_->open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text);
}

void Log::truncate()
{
    truncateLogFile(name_);
}

qint64 Log::getSize() const
{
    if (!file_->isOpen())
        return QFileInfo(name_).size();
    const qint64 size = isBufferEmpty(*file_) ? Platform::sizeOf(*file_) : -1;
    return size >= 0 ? size : file_->size();
}

QString Log::getPrefix() const
{
    if (timeStamp_ != TimeOnly && timeStamp_ != DateAndTime)
        return QString();
    const QDateTime now = QDateTime::currentDateTime();
    return QStringLiteral("[%1]").arg(timeStamp_ == TimeOnly ? now.time().toString(Qt::TextDate)
                                                             : now.toString(Qt::TextDate));
}

QString Log::rstrip(const QString &text) const
{
    auto length = text.size();
    while (length > 0 && text.at(length - 1).isSpace())
        --length;
    return text.left(length);
}

QString Log::getFileTimeStamp()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd-hhmmss"));
}

bool Log::removeOldTimeStampedLogFiles()
{
    return removeOldTimeStampedLogFiles(path_, baseName_, suffix_, MaxLogCount);
}

// The destructor of the stream writes and flushes the text.
template <typename Value> void Log::write(Value value)
{
    QTextStream stream(file_.get());
    QtVersion::setUtf8(stream);
    stream << value;
}

} // namespace Vorn::Util
