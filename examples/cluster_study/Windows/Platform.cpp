#include "Platform.h"

#include <cstdio>
#include <io.h>

namespace ClusterStudy {

bool isTerminal()
{
    return _isatty(_fileno(stdout)) != 0;
}

} // namespace ClusterStudy
