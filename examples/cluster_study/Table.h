#pragma once

#include "CaseEnd.h"
#include "Cases.h"

namespace ClusterStudy {

/// The table of results as CSV: for each case its number, its parameters, its state, exit code and
/// time, why it failed, and the results that it wrote. Results that have the name of another column
/// are left out; their names are added to \a ignored.
QByteArray tableOf(const Cases &cases, const QVector<CaseEnd> &ends,
                   const QVector<Results> &results, QStringList &ignored);

} // namespace ClusterStudy
