#include "Table.h"

#include "CsvText.h"

#include <QtCore/QHash>

namespace ClusterStudy {

QByteArray tableOf(const Cases &cases, const QVector<CaseEnd> &ends,
                   const QVector<Results> &results, QStringList &ignored)
{
    QStringList columns = fixedColumns(cases.names);
    const int ownColumns = columns.size();
    QHash<QString, int> columnOf;
    for (int column = 0; column < ownColumns; ++column)
        columnOf.insert(columns.at(column), column);
    for (const Results &ofCase : results) {
        for (const auto &result : ofCase) {
            if (!columnOf.contains(result.first)) {
                columnOf.insert(result.first, columns.size());
                columns << result.first;
            }
        }
    }

    QByteArray table = csvLine(columns);
    for (int index = 0; index < cases.count(); ++index) {
        const CaseEnd &end = ends.at(index);
        const bool hasRun = end.state != CaseEnd::Missing;
        QStringList fields = QStringList{QString::number(index + 1)} + cases.values.at(index);
        fields << stateName(end.state);
        fields << (end.exitCode < 0 ? QString() : QString::number(end.exitCode));
        fields << (hasRun ? QString::number(static_cast<double>(end.milliseconds) / 1000, 'f', 3)
                          : QString());
        fields << (end.state == CaseEnd::Failed ? end.error : QString());
        while (fields.size() < columns.size())
            fields << QString();
        for (const auto &result : results.at(index)) {
            const int column = columnOf.value(result.first);
            if (column >= ownColumns)
                fields[column] = result.second;
            else if (!ignored.contains(result.first))
                ignored << result.first;
        }
        table += csvLine(fields);
    }
    return table;
}

} // namespace ClusterStudy
