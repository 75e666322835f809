#include <Utility/StandardOutput_p.h>

#include <QtCore/QFile>

#include <cstdio>

namespace Vorn::Util {

void printToStandardOutput(const QString &text)
{
    // Past the C stream: on a stream that was used for wide characters, narrow ones are lost.
    constexpr int Descriptor = 1;
    std::fflush(stdout);
    QFile output;
    if (output.open(Descriptor, QIODevice::WriteOnly | QIODevice::Unbuffered))
        output.write(text.toLocal8Bit());
}

} // namespace Vorn::Util
