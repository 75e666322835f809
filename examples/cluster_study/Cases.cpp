#include "Cases.h"

#include "CsvText.h"
#include "Platform.h"
#include "Text.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QHash>
#include <QtCore/QRegularExpression>

namespace ClusterStudy {

namespace {

const QString &numberName()
{
    static const QString name = QStringLiteral("case");
    return name;
}

// Names of environment variables on Windows have no letter case.
QString checkNames(const QStringList &names)
{
    static const QRegularExpression valid(QStringLiteral("\\A[A-Za-z_][A-Za-z0-9_]*\\z"));
    const QStringList reserved = fixedColumns({});
    QHash<QString, int> used;
    for (int column = 1; column <= names.size(); ++column) {
        const QString &name = names.at(column - 1);
        QString problem;
        if (name.isEmpty())
            problem = QStringLiteral("the parameter has no name");
        else if (name != name.trimmed())
            problem = QStringLiteral("the name \"%1\" begins or ends with a blank; remove it")
                          .arg(oneLine(name));
        else if (!valid.match(name).hasMatch())
            problem = QStringLiteral("the name \"%1\" is not valid; use letters, digits and _")
                          .arg(oneLine(name));
        else if (reserved.contains(name.toLower()))
            problem = QStringLiteral("this name is reserved for the table of results; use "
                                     "another: %1")
                          .arg(name);
        else if (used.contains(name.toLower()))
            problem = QStringLiteral("column %1 has this name too (letter case does not count); "
                                     "use another: %2")
                          .arg(QString::number(used.value(name.toLower())), name);
        if (!problem.isEmpty())
            return QStringLiteral("Column %1: %2").arg(QString::number(column), problem);
        used.insert(name.toLower(), column);
    }
    return QString();
}

// Finds "{{name}}" and "{name}".
const QRegularExpression &placeholder()
{
    static const QRegularExpression expression(
        QStringLiteral("\\{(\\{[A-Za-z_][A-Za-z0-9_]*\\})\\}|\\{([A-Za-z_][A-Za-z0-9_]*)\\}"));
    return expression;
}

QString filled(const QString &argument, const Cases &cases, int number)
{
    QString result;
    int from = 0;
    auto matches = placeholder().globalMatch(argument);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const QString name = match.captured(2);
        result += argument.mid(from, match.capturedStart() - from);
        if (name.isEmpty())
            result += match.captured(1);
        else if (name == numberName())
            result += QString::number(number);
        else
            result += cases.values.at(number - 1).value(cases.names.indexOf(name));
        from = match.capturedEnd();
    }
    return result + argument.mid(from);
}

} // namespace

QString readCases(const QByteArray &csv, Cases &cases)
{
    QVector<CsvRow> rows;
    QString problem = readCsv(csv, rows);
    if (!problem.isEmpty())
        return problem;
    if (rows.size() < 2)
        return QStringLiteral("Expected a row with the names of the parameters and at least one "
                              "case");
    cases.names = rows.takeFirst().fields;
    problem = checkNames(cases.names);
    if (!problem.isEmpty())
        return problem;
    for (const CsvRow &row : qAsConst(rows)) {
        if (row.fields.size() != cases.names.size()) {
            return QStringLiteral("Line %1: expected %2 values, found %3")
                .arg(QString::number(row.line), QString::number(cases.names.size()),
                     QString::number(row.fields.size()));
        }
        for (int index = 0; index < row.fields.size(); ++index) {
            if (!canBePassed(row.fields.at(index))) {
                return QStringLiteral("Line %1: the encoding of the system cannot hold the value "
                                      "of %2; set LC_ALL to one that can, such as C.UTF-8")
                    .arg(QString::number(row.line), cases.names.at(index));
            }
        }
        cases.values << row.fields;
    }
    return QString();
}

QStringList filledArguments(const QStringList &arguments, const Cases &cases, int number)
{
    QStringList result;
    for (const QString &argument : arguments)
        result << filled(argument, cases, number);
    return result;
}

QString unknownParameter(const QStringList &arguments, const QStringList &names)
{
    for (const QString &argument : arguments) {
        auto matches = placeholder().globalMatch(argument);
        while (matches.hasNext()) {
            const QString name = matches.next().captured(2);
            if (!name.isEmpty() && name != numberName() && !names.contains(name))
                return QStringLiteral("There is no parameter {%1}").arg(name);
        }
    }
    return QString();
}

QString variableName(const QString &name)
{
    return QStringLiteral("STUDY_") + name.toUpper();
}

QStringList fixedColumns(const QStringList &names)
{
    return QStringList{numberName()} + names
        + QStringList{QStringLiteral("state"), QStringLiteral("exit_code"),
                      QStringLiteral("seconds"), QStringLiteral("error")};
}

QByteArray fingerprint(const Cases &cases)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(csvLine(cases.names));
    for (const QStringList &values : cases.values)
        hash.addData(csvLine(values));
    return hash.result().toHex();
}

} // namespace ClusterStudy
