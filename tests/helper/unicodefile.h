#pragma once

#include <QtCore/QStringList>

/// "unicode-file FILE": gives FILE its plain path and prints, as a JSON object, what the process
/// sees while it has it. Needs a fresh process for each temporary folder, because System keeps that
/// folder.
int unicodeFile(const QStringList &arguments);
