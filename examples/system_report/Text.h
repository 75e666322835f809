#pragma once

#include <QtCore/QString>

#include <cstdio>

namespace SystemReport {

/// Replaces the characters that could change what a reader sees of the text around them: control
/// characters, line breaks, and characters that turn the direction of writing.
QString oneLine(QString text);

/// A path with the separators of the system, in one line.
QString shownPath(const QString &path);

/// A number with its unit, or "unknown" if it is negative.
QString measure(qint64 value, const QString &unit);

/// Prints \a text in the encoding of the system. Returns false if it cannot be written.
bool print(std::FILE *stream, const QString &text);

} // namespace SystemReport
