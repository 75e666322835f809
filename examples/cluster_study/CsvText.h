#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

namespace ClusterStudy {

/// A record of a CSV file.
struct CsvRow
{
    int line = 0; ///< where the record begins; the first line is 1
    QStringList fields;
};

/// Reads CSV text (RFC 4180, in UTF-8) into \a rows. Lines end with LF or CR LF; empty lines are
/// ignored. Returns an error message, empty if there is no error.
QString readCsv(const QByteArray &text, QVector<CsvRow> &rows);

/// A record with its line end, LF. A field is quoted only if it has to be.
QByteArray csvLine(const QStringList &fields);

} // namespace ClusterStudy
