#include "Platform.h"

#include <unistd.h>

namespace ClusterStudy {

bool isTerminal()
{
    return isatty(STDOUT_FILENO) != 0;
}

bool canBePassed(const QString &text)
{
    // Qt reads bytes that are no text as this character.
    return !text.contains(QChar(QChar::ReplacementCharacter))
        && QString::fromLocal8Bit(text.toLocal8Bit()) == text;
}

bool isRunByShell(const QString &)
{
    return false;
}

} // namespace ClusterStudy
