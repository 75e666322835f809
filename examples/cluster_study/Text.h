#pragma once

#include <QtCore/QString>

namespace ClusterStudy {

/// \a text with "?" for each control character, such as a line end.
QString oneLine(QString text);

/// \a path as it is shown to the user.
QString shown(const QString &path);

} // namespace ClusterStudy
