#include "Report.h"

#include "FilesToPack.h"
#include "StudyFolder.h"
#include "Table.h"
#include "Text.h"
#include "TimesPicture.h"

#include <Utility/Log.h>
#include <Utility/System.h>

#include <algorithm>

using namespace Vorn::Util;

namespace ClusterStudy {

namespace {

const QString TableFile = QStringLiteral("results.csv");
const QString PictureFile = QStringLiteral("times.svg");

} // namespace

Report::Report(const Cases &cases, const StudyFolder &folder, Log &log)
    : cases_(cases)
    , folder_(folder)
    , log_(log)
{
}

QString Report::write()
{
    ends_.clear();
    QVector<Results> results;
    for (int number = 1; number <= cases_.count(); ++number) {
        ends_ << folder_.readEnd(number);
        QString ignored;
        results << (ends_.last().state == CaseEnd::Ok ? folder_.readResults(number, ignored)
                                                      : Results());
        if (!ignored.isEmpty())
            log_.append(QStringLiteral("Case %1: %2").arg(QString::number(number), ignored));
    }
    QStringList ignored;
    const QByteArray table = tableOf(cases_, ends_, results, ignored);
    if (!ignored.isEmpty()) {
        log_.append(QStringLiteral("Results with the name of another column are not in the table: "
                                   "%1")
                        .arg(ignored.join(QStringLiteral(", "))));
    }
    const QString problem = folder_.writeFile(TableFile, table);
    return problem.isEmpty() ? folder_.writeFile(PictureFile, timesPicture(ends_)) : problem;
}

QStringList Report::filesForArchive()
{
    QStringList leftOut;
    QStringList names{TableFile, PictureFile};
    for (int number = 1; number <= cases_.count(); ++number) {
        const CaseEnd::State state = ends_.at(number - 1).state;
        if (state != CaseEnd::Ok && state != CaseEnd::Failed)
            continue;
        names << folder_.endFile(number);
        names += filesToPack(folder_.path(), folder_.caseName(number), leftOut);
    }
    for (const QString &name : qAsConst(leftOut))
        log_.append(QStringLiteral("Not packed: %1").arg(name));
    notPacked_ = leftOut.size();
    return names;
}

int Report::count(CaseEnd::State state) const
{
    return static_cast<int>(std::count_if(
        ends_.begin(), ends_.end(), [state](const CaseEnd &end) { return end.state == state; }));
}

int Report::packedCount() const
{
    return count(CaseEnd::Ok) + count(CaseEnd::Failed);
}

QString Report::summary(qint64 milliseconds) const
{
    QString line = QStringLiteral("%1 cases: %2 ok, %3 failed, %4 cancelled, %5 missing, in %6: %7")
                       .arg(QString::number(ends_.size()), QString::number(count(CaseEnd::Ok)),
                            QString::number(count(CaseEnd::Failed)),
                            QString::number(count(CaseEnd::Cancelled)),
                            QString::number(count(CaseEnd::Missing)),
                            System::getElapsedTimeString(milliseconds), shown(folder_.path()));
    if (notPacked_ > 0)
        line += QStringLiteral("; %1 entries were not packed, see study.log").arg(notPacked_);
    return line;
}

} // namespace ClusterStudy
