#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

#include <optional>

namespace Vorn::Util::Formats {

enum class ArchiverOperation { Compress, Extract, List };

/// The switches and the output format of the console program of 7-Zip, named by version.
enum class ArchiverDialect {
    UpTo933,  ///< the output format of 9.20; gets only the arguments of its operation
    From934,  ///< the totals of a listing begin with a date; knows the switch -spd
    From1505, ///< prints extracted names only with -bb1; multi-line comments have no braces
    From2107  ///< a multi-line comment is in braces
};

/// A version such as 9.20 or 24.09.
struct ArchiverVersion
{
    int majorNumber = 0;
    int minorNumber = 0;
};

/// Reads the version from the first line that the program prints, such as
/// "7-Zip (a) [64] 16.02 : Copyright ...". Nothing for any other line.
std::optional<ArchiverVersion> versionInBanner(const QByteArray &line);

ArchiverDialect dialectOf(ArchiverVersion version);

/// Appends to \a arguments the switches of \a dialect that turn wildcards off, print names, print
/// them in UTF-8, and prevent a question for a password.
QStringList archiverArguments(ArchiverDialect dialect, ArchiverOperation operation,
                              const QStringList &arguments);

} // namespace Vorn::Util::Formats
