#pragma once

#include <Utility/Platform/ProcessorRecords.h>

#include <QtCore/QStringList>

namespace Vorn::Util::Platform {

struct ProcessorQuery
{
    bool ok = false;
    ProcessorCounts counts;
    QStringList messages; ///< what the caller's log is to say about the query, in order
};

/// Asks the system for its processors. Only those that are online count.
ProcessorQuery queryProcessors();

} // namespace Vorn::Util::Platform
