// The input is a path, which is converted to its Windows form and to its WSL form.

#include "Fuzz.h"

#include <Utility/System.h>

#include <QtCore/QRegularExpression>

using namespace Vorn::Util;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString path = textOf(bytesOf(data, size));
    CHECK(System::isWslPath(path) != System::isWindowsPath(path));

    static const QRegularExpression mount(QStringLiteral("\\A/mnt/[a-z]/"));
    const QString windows = System::toWindowsPath(path);
    if (mount.match(path).hasMatch()) {
        const QString drive = path.at(5).toUpper() + QLatin1Char(':');
        CHECK(windows.startsWith(drive));
        CHECK(!windows.contains(QLatin1Char('/')));
        if (!path.contains(drive) && !path.contains(QLatin1Char('\\')))
            CHECK(System::toWslPath(windows) == path);
    } else {
        CHECK(windows == path);
    }

    static const QRegularExpression drive(QStringLiteral("\\A[A-Za-z|]:"));
    const QString wsl = System::toWslPath(path);
    if (drive.match(path).hasMatch()) {
        CHECK(wsl.startsWith(QLatin1String("/mnt/") + path.at(0).toLower()));
        CHECK(!wsl.contains(QLatin1Char('\\')));
    } else {
        CHECK(wsl == path);
    }
    return 0;
}
