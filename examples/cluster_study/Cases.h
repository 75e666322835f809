#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace ClusterStudy {

/// The parameter sets of a study. Cases have the numbers 1 to count().
struct Cases
{
    QStringList names;
    QVector<QStringList> values; ///< of each case, in the order of the names

    int count() const { return values.size(); }
};

/// Reads the cases from a CSV file: first the names of the parameters, then a row for each case. A
/// name consists of letters of ASCII, digits and "_" and does not begin with a digit. Returns an
/// error message, empty if there is no error.
QString readCases(const QByteArray &csv, Cases &cases);

/// \a arguments with the values of the case \a number. "{name}" in an argument is replaced by the
/// value of the parameter, "{case}" by the number, "{{name}}" by "{name}". Values are not searched
/// for names.
QStringList filledArguments(const QStringList &arguments, const Cases &cases, int number);

/// An error message if an argument has "{name}" with a name that is no parameter.
QString unknownParameter(const QStringList &arguments, const QStringList &names);

/// The name of the environment variable for the parameter \a name.
QString variableName(const QString &name);

/// The columns of the table of results for parameters with these \a names, without the columns that
/// cases add.
QStringList fixedColumns(const QStringList &names);

/// A number that differs between studies with different cases.
QByteArray fingerprint(const Cases &cases);

} // namespace ClusterStudy
