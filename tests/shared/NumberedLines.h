#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

/// The length of a line in a log without times, with its blank and without its line end.
constexpr int NumberedLineLength = 100;

/// A text that is unique for the name and the number. All texts have the same length.
inline QString numberedLine(const QString &name, int number)
{
    const QString text = QStringLiteral("%1 %2 ").arg(
        name, QString::number(number).rightJustified(9, QLatin1Char('0')));
    return text.leftJustified(NumberedLineLength - 1, QLatin1Char('.'));
}
