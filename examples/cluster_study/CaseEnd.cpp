#include "CaseEnd.h"

#include <QtCore/QHash>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QStringList>

namespace ClusterStudy {

namespace {

constexpr int MaxResults = 1000;

const QString CaseKey = QStringLiteral("case");
const QString StateKey = QStringLiteral("state");
const QString ExitCodeKey = QStringLiteral("exitCode");
const QString MillisecondsKey = QStringLiteral("milliseconds");
const QString ErrorKey = QStringLiteral("error");

} // namespace

QString stateName(CaseEnd::State state)
{
    const QStringList names{QStringLiteral("missing"), QStringLiteral("ok"),
                            QStringLiteral("failed"), QStringLiteral("cancelled")};
    return names.at(state);
}

QByteArray endFileContent(const CaseEnd &end, int number)
{
    QJsonObject object;
    object.insert(CaseKey, number);
    object.insert(StateKey, stateName(end.state));
    object.insert(ExitCodeKey, end.exitCode);
    object.insert(MillisecondsKey, end.milliseconds);
    object.insert(ErrorKey, end.error);
    return QJsonDocument(object).toJson();
}

CaseEnd readEndFile(const QByteArray &content, int number)
{
    const QJsonObject object = QJsonDocument::fromJson(content).object();
    CaseEnd end;
    if (object.value(CaseKey).toInt() != number || !object.value(ExitCodeKey).isDouble()
        || !object.value(MillisecondsKey).isDouble() || !object.value(ErrorKey).isString())
        return end;
    const QString name = object.value(StateKey).toString();
    for (const auto state : {CaseEnd::Ok, CaseEnd::Failed, CaseEnd::Cancelled}) {
        if (name == stateName(state)) {
            end.state = state;
            end.exitCode = object.value(ExitCodeKey).toInt(-1);
            end.milliseconds
                = qMax<qint64>(0, static_cast<qint64>(object.value(MillisecondsKey).toDouble()));
            end.error = object.value(ErrorKey).toString();
        }
    }
    return end;
}

Results readResults(const QByteArray &content, QString &ignored)
{
    Results results;
    QHash<QString, int> places;
    const QStringList lines = QString::fromUtf8(content).split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        const int equals = line.indexOf(QLatin1Char('='));
        const QString name = line.left(equals).trimmed();
        if (equals < 0 || name.isEmpty())
            continue;
        const QString value = line.mid(equals + 1).trimmed();
        if (places.contains(name)) {
            results[places.value(name)].second = value;
        } else if (results.size() < MaxResults) {
            places.insert(name, results.size());
            results.append(qMakePair(name, value));
        } else {
            ignored = QStringLiteral("only the first %1 names are read").arg(MaxResults);
        }
    }
    return results;
}

} // namespace ClusterStudy
