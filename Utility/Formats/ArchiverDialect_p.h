#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

#include <optional>

namespace Vorn::Util::Formats {

enum class ArchiverOperation { Compress, Extract, List };

/// The forms that the output of 7-Zip's console program has had, named by version.
enum class ArchiverDialect {
    UpTo933,  ///< the form of the product's own program; it gets no switches besides the documented
    From934,  ///< totals of a listing begin with a date; the program knows -spd
    From1505, ///< names of extracted files only with -bb1; comments may come without braces
    From2107  ///< a comment of several lines stands in braces
};

/// A version such as 9.20 or 24.09.
struct ArchiverVersion
{
    int majorNumber = 0;
    int minorNumber = 0;
};

/// The version in the line with which the program begins its output, such as
/// "7-Zip (a) [64] 16.02 : Copyright ..."; none for any other line.
std::optional<ArchiverVersion> versionInBanner(const QByteArray &line);

ArchiverDialect dialectOf(ArchiverVersion version);

/// The command line \a arguments with what \a dialect needs to take names as they are, without
/// wildcards, to print them, in UTF-8, and to ask for no password.
QStringList archiverArguments(ArchiverDialect dialect, ArchiverOperation operation,
                              const QStringList &arguments);

} // namespace Vorn::Util::Formats
