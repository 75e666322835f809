#pragma once

#include <QtCore/QString>

#include <cstdio>

namespace ClusterStudy {

/// Prints a line. On a terminal it replaces the live line, if there is one.
void printLine(std::FILE *stream, const QString &line);

/// Prints a line that the next output replaces. Only for a terminal.
void printLiveLine(const QString &line);

} // namespace ClusterStudy
