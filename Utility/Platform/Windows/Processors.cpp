#include <Utility/Platform/Processors.h>

#include <Utility/Platform/Windows/WindowsApi.h>

namespace Vorn::Util::Platform {

namespace {

using ExtendedQuery = BOOL(WINAPI *)(LOGICAL_PROCESSOR_RELATIONSHIP,
                                     PSYSTEM_LOGICAL_PROCESSOR_INFORMATION_EX, PDWORD);

// Calls \a ask without a buffer for the length, then with one.
template <typename Ask> QByteArray bytesOf(const Ask &ask, DWORD &error)
{
    DWORD length = 0;
    ask(nullptr, &length);
    QByteArray bytes(static_cast<int>(length), '\0');
    error = ask(bytes.data(), &length) ? ERROR_SUCCESS : GetLastError();
    return bytes.left(static_cast<int>(length));
}

// Looked up at run time, so that the library also loads where it is missing.
ExtendedQuery findExtendedQuery()
{
    const HMODULE module = GetModuleHandleW(L"kernel32");
    const FARPROC function
        = module ? GetProcAddress(module, "GetLogicalProcessorInformationEx") : nullptr;
    return reinterpret_cast<ExtendedQuery>(reinterpret_cast<void *>(function));
}

QString failure(const QString &call, DWORD error)
{
    return QStringLiteral("%1 failed, error = %2").arg(call, QString::number(error));
}

} // namespace

ProcessorQuery queryProcessors()
{
    ProcessorQuery query;
    DWORD error = ERROR_SUCCESS;
    if (const ExtendedQuery extended = findExtendedQuery()) {
        const auto ask = [extended](char *buffer, DWORD *length) {
            return extended(RelationAll,
                            reinterpret_cast<PSYSTEM_LOGICAL_PROCESSOR_INFORMATION_EX>(buffer),
                            length);
        };
        const QByteArray records = bytesOf(ask, error);
        query.ok = error == ERROR_SUCCESS;
        if (query.ok)
            query.counts = countExtendedRecords(records);
        else
            query.messages << failure(QStringLiteral("GetLogicalProcessorInformationEx"), error);
        return query;
    }
    query.messages << QStringLiteral("Using GetLogicalProcessorInformation");
    const auto ask = [](char *buffer, DWORD *length) {
        return GetLogicalProcessorInformation(
            reinterpret_cast<PSYSTEM_LOGICAL_PROCESSOR_INFORMATION>(buffer), length);
    };
    const QByteArray records = bytesOf(ask, error);
    query.ok = error == ERROR_SUCCESS;
    if (query.ok)
        query.counts = countFixedRecords(records);
    else
        query.messages << failure(QStringLiteral("GetLogicalProcessorInformation"), error);
    return query;
}

} // namespace Vorn::Util::Platform
