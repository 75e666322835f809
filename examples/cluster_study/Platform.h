#pragma once

namespace ClusterStudy {

/// Whether the standard output is a terminal.
bool isTerminal();

} // namespace ClusterStudy
