#pragma once

#include <Utility/Formats/ProcessorRecords_p.h>

namespace Vorn::Util::Platform {

/// Queries the number of processors and cores from the system. Offline processors do not count.
Formats::ProcessorQuery queryProcessors();

} // namespace Vorn::Util::Platform
