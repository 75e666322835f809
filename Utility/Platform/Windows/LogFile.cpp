#include <Utility/Platform/LogFile.h>

#include <Utility/Platform/Windows/WindowsApi.h>

#include <QtCore/QFile>

#include <io.h>

namespace Vorn::Util::Platform {

qint64 writeDirectly(const QFile & /*file*/, const char * /*bytes*/, qint64 /*count*/)
{
    return 0;
}

qint64 sizeOf(const QFile &file)
{
    const int descriptor = file.handle();
    if (descriptor < 0)
        return -1;
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
    LARGE_INTEGER size = {};
    return GetFileSizeEx(handle, &size) != 0 ? size.QuadPart : -1;
}

} // namespace Vorn::Util::Platform
