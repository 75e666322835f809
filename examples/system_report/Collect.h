#pragma once

#include "Report.h"

namespace SystemReport {

struct Options;

/// Asks the library for everything. Takes as long as the counters are read.
Report collectReport(const Options &options);

} // namespace SystemReport
