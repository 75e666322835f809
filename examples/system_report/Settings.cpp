#include "CapturedOutput.h"
#include "Sections.h"

#include <Utility/Registry.h>

#include <array>

using namespace Vorn::Util;

namespace SystemReport {

namespace {

QStringList row(const wchar_t *name)
{
    std::array<wchar_t, 1024> value{}; // the size that Registry requires for a value
    CapturedOutput output;
    Registry::readRegistryValue(name, value.data(), nullptr);
    const QString problem = output.end(); // the line that Registry prints after a failure
    const QString text = QString::fromWCharArray(value.data());
    if (!problem.isEmpty())
        return {QString::fromWCharArray(name), QStringLiteral("(not set: %1)").arg(problem)};
    return {QString::fromWCharArray(name), text.isEmpty() ? QStringLiteral("(empty)") : text};
}

} // namespace

Section settings()
{
    Section section;
    section.title = QStringLiteral("Settings of the product");
    for (const wchar_t *name : {L"InstallationDirectory", L"AnalyzeDirectory", L"Locale"})
        section.rows << row(name);
    return section;
}

} // namespace SystemReport
