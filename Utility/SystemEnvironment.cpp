// Environment variables, the machine and the user.

#include <Utility/DebugMessages_p.h>
#include <Utility/Platform/Processes.h>
#include <Utility/System.h>

#include <QtNetwork/QHostInfo>

#include <mutex>

namespace Vorn::Util {

QString System::hostName_;

namespace {

// Any thread may call getHostName().
std::mutex hostNameMutex;

} // namespace

QString System::getEnv(const QString &name)
{
    return QString::fromLatin1(qgetenv(name.toLatin1().constData()));
}

QString System::getHostName()
{
    const std::lock_guard<std::mutex> lock(hostNameMutex);
    if (hostName_.isEmpty()) {
        hostName_ = Platform::hostName();
        if (hostName_.isEmpty())
            hostName_ = QHostInfo::localHostName();
    }
    return hostName_;
}

QString System::getUserName()
{
    QString name = Platform::userName();
    if (name.isEmpty())
        qCDebug(debugMessages, "Cannot determine user name");
    return name;
}

bool System::isLocalHost(const QString &host)
{
    return host == QLatin1String("localhost") || host == QLatin1String("MyComputer")
        || host == getHostName();
}

} // namespace Vorn::Util
