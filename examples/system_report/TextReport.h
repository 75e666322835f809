#pragma once

#include "Report.h"

namespace SystemReport {

/// The report as text, with the columns of each table aligned.
QString textReport(const Report &report);

} // namespace SystemReport
