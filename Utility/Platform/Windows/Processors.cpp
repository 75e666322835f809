#include <Utility/Platform/Processors.h>

#include <Utility/Platform/Windows/WindowsApi.h>

namespace Vorn::Util::Platform {

namespace {

using ExtendedQuery = BOOL(WINAPI *)(LOGICAL_PROCESSOR_RELATIONSHIP,
                                     PSYSTEM_LOGICAL_PROCESSOR_INFORMATION_EX, PDWORD);
static_assert(RelationAll == 0xFFFF);

// Looked up at run time, so that the library also loads on systems without this function.
ExtendedQuery findExtendedQuery()
{
    const HMODULE module = GetModuleHandleW(L"kernel32");
    const FARPROC function
        = module ? GetProcAddress(module, "GetLogicalProcessorInformationEx") : nullptr;
    return reinterpret_cast<ExtendedQuery>(reinterpret_cast<void *>(function));
}

Formats::CallOutcome outcomeOf(BOOL result)
{
    return {result != FALSE, result ? ERROR_SUCCESS : GetLastError()};
}

Formats::CallOutcome askOlder(char *buffer, quint32 *length)
{
    DWORD size = *length;
    const Formats::CallOutcome outcome = outcomeOf(GetLogicalProcessorInformation(
        reinterpret_cast<PSYSTEM_LOGICAL_PROCESSOR_INFORMATION>(buffer), &size));
    *length = size;
    return outcome;
}

} // namespace

Formats::ProcessorQuery queryProcessors()
{
    Formats::RecordsCall extended;
    if (const ExtendedQuery query = findExtendedQuery()) {
        extended = [query](char *buffer, quint32 *length) {
            DWORD size = *length;
            const Formats::CallOutcome outcome = outcomeOf(
                query(RelationAll,
                      reinterpret_cast<PSYSTEM_LOGICAL_PROCESSOR_INFORMATION_EX>(buffer), &size));
            *length = size;
            return outcome;
        };
    }
    return Formats::queryRecords(extended, askOlder);
}

} // namespace Vorn::Util::Platform
