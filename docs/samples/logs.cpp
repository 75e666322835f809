#include "Samples.h"

#include <Utility/Log.h>

using namespace Vorn::Util;

void Samples::writeLog(const QString &folder)
{
    //! [log]
    Log log(folder + "/run.log", Log::WithFileTimeStamp);
    if (log.open(true))
        log.append("Mesh read"); // "[14:23:10] Mesh read"
    //! [log]
}
