#include "Platform.h"

#include <unistd.h>

namespace ClusterStudy {

bool isTerminal()
{
    return isatty(STDOUT_FILENO) != 0;
}

} // namespace ClusterStudy
