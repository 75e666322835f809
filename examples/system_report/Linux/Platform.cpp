#include "Platform.h"

#include <QtCore/QFile>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace SystemReport {

int redirectStandardOutput(const QString &path)
{
    std::fflush(stdout);
    const int file = open(QFile::encodeName(path).constData(),
                          O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0)
        return -1;
    const int before = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (before >= 0)
        dup2(file, STDOUT_FILENO);
    close(file);
    return before;
}

void restoreStandardOutput(int descriptor)
{
    if (descriptor < 0)
        return;
    std::fflush(stdout);
    dup2(descriptor, STDOUT_FILENO);
    close(descriptor);
}

} // namespace SystemReport
