#include "CaseEnd.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QStringList>

#include <algorithm>

namespace ClusterStudy {

namespace {

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

Results readResults(const QByteArray &content)
{
    Results results;
    const QStringList lines = QString::fromUtf8(content).split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        const int equals = line.indexOf(QLatin1Char('='));
        const QString name = line.left(equals).trimmed();
        if (equals < 0 || name.isEmpty())
            continue;
        const auto found = std::find_if(results.begin(), results.end(),
                                        [&name](const auto &item) { return item.first == name; });
        const QString value = line.mid(equals + 1).trimmed();
        if (found == results.end())
            results.append(qMakePair(name, value));
        else
            found->second = value;
    }
    return results;
}

} // namespace ClusterStudy
