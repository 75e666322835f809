#pragma once

#include <QtCore/QStringList>

/// "unicode-file FILE": gives FILE its plain path and prints, as a JSON object, what the process
/// sees while it has it. A fresh process for every temporary folder, which System keeps.
int unicodeFile(const QStringList &arguments);
