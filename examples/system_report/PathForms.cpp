#include "Sections.h"

#include <Utility/System.h>
#include <Utility/UnicodeFile.h>

using namespace Vorn::Util;

namespace SystemReport {

Section pathForms()
{
    Section section;
    section.title = QStringLiteral("Forms of paths");
    section.remark = QStringLiteral("Folders of this machine, and one example for each system.");
    section.columns
        = QStringList{QStringLiteral("Path"), QStringLiteral("Windows"), QStringLiteral("WSL"),
                      QStringLiteral("Universal"), QStringLiteral("ASCII")};
    const QStringList paths{System::getCurrentExePath(), System::getWorkingDirPath(),
                            System::getTempDirPath(), QStringLiteral("D:\\work\\case1"),
                            QStringLiteral("/mnt/d/work/case1")};
    for (const QString &path : paths) {
        section.rows << QStringList{path, System::toWindowsPath(path), System::toWslPath(path),
                                    System::getUniversalPath(path),
                                    UnicodeFile::isUnicode(path) ? QStringLiteral("no")
                                                                 : QStringLiteral("yes")};
    }
    return section;
}

} // namespace SystemReport
