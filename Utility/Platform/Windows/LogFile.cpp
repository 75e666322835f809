#include <Utility/Platform/LogFile.h>

#include <QtCore/QFile>

namespace Vorn::Util::Platform {

qint64 writeDirectly(const QFile & /*file*/, const char * /*bytes*/, int /*count*/)
{
    return 0;
}

qint64 sizeOf(const QFile &file)
{
    return file.size();
}

} // namespace Vorn::Util::Platform
