#pragma once

#include <Utility/Platform/ProcessorRecords.h>

namespace Vorn::Util::Platform {

/// Asks the system for its processors. Only those that are online count.
ProcessorQuery queryProcessors();

} // namespace Vorn::Util::Platform
