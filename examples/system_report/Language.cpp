#include "Sections.h"

#include <Utility/System.h>

#include <QtCore/QLocale>

using namespace Vorn::Util;

namespace SystemReport {

Section language()
{
    Section section;
    section.title = QStringLiteral("Language");
    section.rows = {
        {QStringLiteral("User interface"), System::getLocale()},
        {QStringLiteral("Identifier"), QString::number(System::getLocaleID())},
        {QStringLiteral("Offered"), System::validLocales().join(QStringLiteral(", "))},
        {QStringLiteral("Operating system"), QLocale::system().name()},
    };
    return section;
}

} // namespace SystemReport
