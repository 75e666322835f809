#include "Text.h"

#include <QtCore/QDir>

#include <algorithm>

namespace ClusterStudy {

QString oneLine(QString text)
{
    std::replace_if(
        text.begin(), text.end(),
        [](QChar character) { return character.category() == QChar::Other_Control; },
        QLatin1Char('?'));
    return text;
}

QString shown(const QString &path)
{
    return oneLine(QDir::toNativeSeparators(path));
}

} // namespace ClusterStudy
