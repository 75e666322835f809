#include <Utility/Platform/Environment.h>

#include <QtCore/QFile>
#include <QtCore/QtGlobal>

namespace Vorn::Util::Platform {

QString environmentVariable(const char *name)
{
    return QFile::decodeName(qgetenv(name));
}

} // namespace Vorn::Util::Platform
