#include "Cases.h"

#include "CsvText.h"
#include "Platform.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QRegularExpression>
#include <QtCore/QSet>

namespace ClusterStudy {

namespace {

const QString &numberName()
{
    static const QString name = QStringLiteral("case");
    return name;
}

QString checkNames(const QStringList &names)
{
    static const QRegularExpression valid(QStringLiteral("\\A[A-Za-z_][A-Za-z0-9_]*\\z"));
    // The columns that the table of results has besides the parameters.
    QSet<QString> used{numberName(), QStringLiteral("state"), QStringLiteral("exit_code"),
                       QStringLiteral("seconds")};
    for (const QString &name : names) {
        if (name.isEmpty())
            return QStringLiteral("A parameter has no name");
        if (!valid.match(name).hasMatch()) {
            return QStringLiteral("The parameter name \"%1\" is not valid: use letters, digits "
                                  "and _")
                .arg(name.simplified());
        }
        // Names of environment variables on Windows have no letter case.
        if (used.contains(name.toLower()))
            return QStringLiteral("The parameter name %1 is used twice or reserved").arg(name);
        used.insert(name.toLower());
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

QByteArray fingerprint(const Cases &cases)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(csvLine(cases.names));
    for (const QStringList &values : cases.values)
        hash.addData(csvLine(values));
    return hash.result().toHex();
}

} // namespace ClusterStudy
