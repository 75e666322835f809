#include "Workplace.h"

#include <malloc.h>

qint64 Workplace::memory()
{
    const auto info = mallinfo2();
    return static_cast<qint64>(info.uordblks + info.hblkhd);
}
