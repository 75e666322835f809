#include "ReportFile.h"

#include "Text.h"

namespace SystemReport {

ReportFile::ReportFile(const QString &path)
    : file_(path)
{
}

QString ReportFile::open()
{
    return file_.open(QIODevice::WriteOnly) ? QString() : problem();
}

QString ReportFile::write(const QByteArray &content)
{
    // flush(): commit() does not notice that the last bytes do not fit on the disk.
    const bool isWritten
        = file_.write(content) == content.size() && file_.flush() && file_.commit();
    return isWritten ? QString() : problem();
}

QString ReportFile::problem() const
{
    return QStringLiteral("The page cannot be written: %1: %2")
        .arg(shownPath(file_.fileName()), file_.errorString());
}

} // namespace SystemReport
