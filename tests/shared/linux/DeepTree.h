#pragma once

#include <QtCore/QFile>
#include <QtCore/QString>

#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

/// Makes the folder \a top and \a depth folders called \a name in it, each in the one before. Calls
/// \a fill with the descriptor of each folder except the deepest. The paths may be longer than the
/// system allows.
inline bool makeDeepTree(const QString &top, const QByteArray &name, int depth,
                         const std::function<bool(int folder)> &fill)
{
    constexpr int Flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    const QByteArray topName = QFile::encodeName(top);
    bool ok = mkdir(topName.constData(), 0777) == 0;
    int folder = open(topName.constData(), Flags);
    for (int level = 0; level < depth && ok; ++level) {
        ok = fill(folder) && mkdirat(folder, name.constData(), 0777) == 0;
        const int below = openat(folder, name.constData(), Flags);
        close(folder);
        folder = below;
    }
    close(folder);
    return ok;
}
