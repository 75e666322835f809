#pragma once

#include "CaseEnd.h"

namespace ClusterStudy {

/// A picture (SVG) with a bar for the time of each case, or of several cases if there are too many.
/// A bar of several cases has the longest time, and the colour of the worst state.
QByteArray timesPicture(const QVector<CaseEnd> &ends);

} // namespace ClusterStudy
