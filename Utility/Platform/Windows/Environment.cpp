#include <Utility/Platform/Environment.h>

#include <Utility/Platform/Windows/WindowsApi.h>

#include <string>

namespace Vorn::Util::Platform {

QString environmentVariable(const char *name)
{
    const QString wideName = QString::fromLatin1(name);
    // A loop, because the value may become longer between two calls.
    std::wstring value;
    DWORD length = GetEnvironmentVariableW(wide(wideName), nullptr, 0);
    while (length > value.size()) {
        value.resize(length);
        length = GetEnvironmentVariableW(wide(wideName), value.data(), length);
    }
    return QString::fromWCharArray(value.data(), static_cast<int>(length));
}

} // namespace Vorn::Util::Platform
