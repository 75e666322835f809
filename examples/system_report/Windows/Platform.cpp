#include "Platform.h"

#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

namespace SystemReport {

int redirectStandardOutput(const QString &path)
{
    std::fflush(stdout);
    const int file
        = _wopen(path.toStdWString().c_str(),
                 _O_CREAT | _O_EXCL | _O_WRONLY | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
    if (file < 0)
        return -1;
    const int before = _dup(_fileno(stdout));
    if (before >= 0)
        _dup2(file, _fileno(stdout));
    _close(file);
    return before;
}

void restoreStandardOutput(int descriptor)
{
    if (descriptor < 0)
        return;
    std::fflush(stdout);
    _dup2(descriptor, _fileno(stdout));
    _close(descriptor);
}

} // namespace SystemReport
