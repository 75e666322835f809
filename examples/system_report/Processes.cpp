#include "Sections.h"

#include <Utility/System.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>

using namespace Vorn::Util;

namespace SystemReport {

Section processes()
{
    Section section;
    section.title = QStringLiteral("Processes of the product");
    section.remark = QStringLiteral("The first process of each program that this user may open.");
    const QString self = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    for (const QString &name :
         {QStringLiteral("VORN.exe"), QStringLiteral("VORN_HLXServer.exe"), self}) {
        const long id = System::getPID({name.toUpper()});
        section.rows << QStringList{name,
                                    id == 0 ? QStringLiteral("not found")
                                            : QStringLiteral("running, process %1").arg(id)};
    }
    return section;
}

} // namespace SystemReport
