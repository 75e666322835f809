#include <Utility/Platform/LogFile.h>

#include <QtCore/QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Vorn::Util::Platform {

qint64 writeDirectly(const QFile &file, const char *bytes, int count)
{
    return write(file.handle(), bytes, static_cast<std::size_t>(count));
}

qint64 sizeOf(const QFile &file)
{
    // Only the size is queried. After a query of the times, the next write must store new times;
    // on ext4 this takes longer than the write itself.
    struct statx status = {};
    if (statx(file.handle(), "", AT_EMPTY_PATH, STATX_SIZE, &status) != 0)
        return -1;
    return static_cast<qint64>(status.stx_size);
}

} // namespace Vorn::Util::Platform
