// The input describes a folder such as /sys/devices/system/cpu. The first line is the list of the
// processors that are online. The next lines are the package, the die and the core of each of the
// first four processors.

#include "Fuzz.h"

#include <Utility/Formats/ProcessorRecords_p.h>

#include <QtCore/QDir>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>

using namespace Vorn::Util::Formats;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir folder;
    const QList<QByteArray> lines = bytesOf(data, size).split('\n');
    // Lists with thousands of processors would take seconds.
    static const QRegularExpression largeNumber(QStringLiteral("[0-9]{3}"));
    if (lines.first().size() > 64 || textOf(lines.first()).contains(largeNumber))
        return 0;
    writeFile(folder.filePath(QStringLiteral("online")), lines.first());
    for (int number = 0; number < 4; ++number) {
        const QString topology = folder.filePath(QStringLiteral("cpu%1/topology").arg(number));
        CHECK(QDir().mkpath(topology));
        const int line = 1 + 3 * number;
        writeFile(topology + QStringLiteral("/physical_package_id"), lines.value(line));
        writeFile(topology + QStringLiteral("/die_id"), lines.value(line + 1));
        writeFile(topology + QStringLiteral("/core_id"), lines.value(line + 2));
    }

    const ProcessorCounts counts = countSysfs(folder.path());
    CHECK(0 <= counts.packages && counts.packages <= counts.cores);
    CHECK((counts.cores > 0) == (counts.packages > 0));
    CHECK(counts.smt.has_value() == (counts.cores > 0));
    return 0;
}
