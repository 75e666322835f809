#pragma once

#include <Utility/Formats/ProcessorRecords_p.h>

namespace Vorn::Util::Platform {

/// Asks the system for its processors. Only those that are online count.
Formats::ProcessorQuery queryProcessors();

} // namespace Vorn::Util::Platform
