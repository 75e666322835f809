#include "CaseCommand.h"

#include "Study.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

namespace ClusterStudy {

namespace {

const QString CaseKey = QStringLiteral("case");
const QString ProgramKey = QStringLiteral("program");
const QString ArgumentsKey = QStringLiteral("arguments");
const QString VariablesKey = QStringLiteral("variables");

} // namespace

CaseCommand commandOf(const Study &study, int number)
{
    CaseCommand command;
    command.program = study.program;
    command.arguments = filledArguments(study.arguments, study.cases, number);
    command.variables.insert(variableName(QStringLiteral("case")), QString::number(number));
    for (int index = 0; index < study.cases.names.size(); ++index)
        command.variables.insert(variableName(study.cases.names.at(index)),
                                 study.cases.values.at(number - 1).at(index));
    return command;
}

QByteArray commandFileContent(const CaseCommand &command, int number)
{
    QJsonObject variables;
    for (auto item = command.variables.cbegin(); item != command.variables.cend(); ++item)
        variables.insert(item.key(), item.value());
    QJsonObject object;
    object.insert(CaseKey, number);
    object.insert(ProgramKey, command.program);
    object.insert(ArgumentsKey, QJsonArray::fromStringList(command.arguments));
    object.insert(VariablesKey, variables);
    return QJsonDocument(object).toJson();
}

bool readCommandFile(const QByteArray &content, int number, CaseCommand &command)
{
    const QJsonObject object = QJsonDocument::fromJson(content).object();
    command = CaseCommand();
    if (object.value(CaseKey).toInt() != number || !object.value(ArgumentsKey).isArray()
        || !object.value(VariablesKey).isObject())
        return false;
    command.program = object.value(ProgramKey).toString();
    const QJsonArray arguments = object.value(ArgumentsKey).toArray();
    for (const QJsonValue argument : arguments)
        command.arguments << argument.toString();
    const QJsonObject variables = object.value(VariablesKey).toObject();
    for (auto item = variables.constBegin(); item != variables.constEnd(); ++item)
        command.variables.insert(item.key(), item.value().toString());
    return !command.program.isEmpty();
}

} // namespace ClusterStudy
