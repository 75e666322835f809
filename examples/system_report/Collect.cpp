#include "Collect.h"

#include "Cluster.h"
#include "Messages.h"
#include "Options.h"
#include "Sections.h"
#include "Text.h"

#include <Utility/System.h>
#include <Utility/Version.h>

#include <QtCore/QDateTime>

using namespace Vorn::Util;

namespace SystemReport {

namespace {

QVector<Highlight> highlightsOf(const QVector<Sample> &samples, const Section &processors)
{
    const QString percent = QStringLiteral("%");
    const qint64 available = samples.isEmpty() ? -1 : samples.last().available;
    return {{QStringLiteral("Library"), Version::Current.toString()},
            {QStringLiteral("Cores"), processors.rows.value(1).value(1)},
            {QStringLiteral("Average load"), measure(average(samples, &Sample::load), percent)},
            {QStringLiteral("Memory available"), measure(available, QStringLiteral("MiB"))}};
}

} // namespace

Report collectReport(const Options &options)
{
    Report report;
    report.machine = System::getHostName();
    report.time = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    report.samples = takeSamples(options.seconds);
    const Section processorTable = processors();
    report.highlights = highlightsOf(report.samples, processorTable);
    report.sections << versions() << processorTable << counters(report.samples)
                    << cluster(options.clusterTools) << folders() << pathForms() << language()
                    << settings() << processes() << flags();
    const Section messageTable = messages();
    if (!messageTable.rows.isEmpty())
        report.sections << messageTable;
    return report;
}

} // namespace SystemReport
