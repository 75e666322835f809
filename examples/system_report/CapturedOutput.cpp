#include "CapturedOutput.h"

#include "Platform.h"

#include <QtCore/QFile>

namespace SystemReport {

CapturedOutput::CapturedOutput()
    : standardOutput_(redirectStandardOutput(file()))
{
}

CapturedOutput::~CapturedOutput()
{
    restoreStandardOutput(standardOutput_);
}

QString CapturedOutput::end()
{
    restoreStandardOutput(standardOutput_);
    standardOutput_ = -1;
    QFile printed(file());
    return printed.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(printed.readAll()).trimmed()
                                             : QString();
}

QString CapturedOutput::file() const
{
    return folder_.filePath(QStringLiteral("output.txt"));
}

} // namespace SystemReport
