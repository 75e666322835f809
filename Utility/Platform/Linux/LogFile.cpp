#include <Utility/Platform/LogFile.h>

#include <QtCore/QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Vorn::Util::Platform {

qint64 writeDirectly(const QFile &file, const char *bytes, qint64 count)
{
    return write(file.handle(), bytes, static_cast<std::size_t>(count));
}

qint64 sizeOf(const QFile &file)
{
    // The position does not matter if each write goes to the end of the file.
    if (file.openMode().testFlag(QIODevice::Append))
        return lseek(file.handle(), 0, SEEK_END);
    // Only the size is queried. After a query of the times, the next write must store new times;
    // on ext4 this takes longer than the write itself.
    struct statx status = {};
    if (statx(file.handle(), "", AT_EMPTY_PATH, STATX_SIZE, &status) != 0)
        return -1;
    return static_cast<qint64>(status.stx_size);
}

} // namespace Vorn::Util::Platform
