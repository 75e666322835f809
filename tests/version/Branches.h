#pragma once

#include <QtCore/QHash>
#include <QtCore/QString>

/// For each reference that the library's version class has been built from here, the branch that
/// the class tells.
QHash<QString, QString> &branches();
