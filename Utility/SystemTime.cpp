// Durations as text.

#include <Utility/System.h>

namespace Vorn::Util {

QString System::getElapsedTimeString(qint64 milliseconds)
{
    const auto twoDigits
        = [](qint64 number) { return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0')); };
    const qint64 hours = milliseconds / 3600000;
    qint64 rest = milliseconds - hours * 3600000;
    const qint64 minutes = rest / 60000;
    rest -= minutes * 60000;
    const qint64 seconds = rest / 1000;
    const qint64 hundredths = (rest - seconds * 1000) / 10;

    if (hours >= 1) {
        return QStringLiteral("%1:%2:%3.%4")
            .arg(QString::number(hours), twoDigits(minutes), twoDigits(seconds),
                 twoDigits(hundredths));
    }
    if (minutes >= 1) {
        return QStringLiteral("%1:%2.%3")
            .arg(QString::number(minutes), twoDigits(seconds), twoDigits(hundredths));
    }
    if (seconds >= 1)
        return QStringLiteral("%1.%2 sec").arg(QString::number(seconds), twoDigits(hundredths));
    return QStringLiteral("0.%1 sec").arg(twoDigits(hundredths));
}

} // namespace Vorn::Util
