#include <Utility/StandardOutput_p.h>

#include <QtCore/QFile>

#include <cstdio>

namespace Vorn::Util {

void printToStandardOutput(const QString &text)
{
    // The C stream stdout is not used: after wide characters it would lose narrow ones.
    constexpr int Descriptor = 1;
    std::fflush(stdout);
    QFile output;
    if (output.open(Descriptor, QIODevice::WriteOnly | QIODevice::Unbuffered))
        output.write(text.toLocal8Bit());
}

} // namespace Vorn::Util
