#pragma once

#include "CaseEnd.h"
#include "Cases.h"

namespace ClusterStudy {

/// The table of results as CSV: for each case its number, its parameters, its state, exit code and
/// time, and the results that it wrote. A result that has the name of another column is left out.
QByteArray tableOf(const Cases &cases, const QVector<CaseEnd> &ends,
                   const QVector<Results> &results);

} // namespace ClusterStudy
