#include "Text.h"

#include <QtCore/QByteArray>
#include <QtCore/QDir>

#include <algorithm>

namespace SystemReport {

namespace {

bool isUnsafe(QChar character)
{
    switch (character.category()) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

} // namespace

QString oneLine(QString text)
{
    std::replace_if(text.begin(), text.end(), isUnsafe, QLatin1Char('?'));
    return text;
}

QString shownPath(const QString &path)
{
    return oneLine(QDir::toNativeSeparators(path));
}

QString measure(qint64 value, const QString &unit)
{
    return value < 0 ? QStringLiteral("unknown") : QString::number(value) + QLatin1Char(' ') + unit;
}

bool print(std::FILE *stream, const QString &text)
{
    const bool isWritten = std::fputs(text.toLocal8Bit().constData(), stream) >= 0;
    return std::fflush(stream) == 0 && isWritten;
}

} // namespace SystemReport
