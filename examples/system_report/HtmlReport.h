#pragma once

#include "Report.h"

#include <QtCore/QByteArray>

namespace SystemReport {

/// The report as one page in UTF-8. It loads nothing and has no script. All values are escaped.
QByteArray htmlReport(const Report &report);

} // namespace SystemReport
