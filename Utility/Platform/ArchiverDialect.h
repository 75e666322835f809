#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Vorn::Util::Platform {

enum class ArchiverOperation { Compress, Extract, List };

/// What an archiver's console program prints. The rules here are pure: they know no system.
enum class ArchiverDialect {
    Product, ///< the program shipped with the product: the form that the readers expect
    Current  ///< since 15.05: names only when asked for, totals that begin with a date
};

/// The command line \a arguments with what \a dialect needs to take names as they are, without
/// wildcards, to print them, in UTF-8, and to ask for no password.
QStringList archiverArguments(ArchiverDialect dialect, ArchiverOperation operation,
                              const QStringList &arguments);

/// Whether \a text is one digit or more and nothing else. A size of an archive may be greater than
/// any integer type holds.
bool isDecimalNumber(const QString &text);

/// Brings the lines of one run's output into the form that the readers expect. Use one decoder
/// per run, for all of its lines in order.
class ArchiverLineDecoder
{
public:
    ArchiverLineDecoder(ArchiverDialect dialect, ArchiverOperation operation);

    /// The line as the product's archiver would print it, with its white space simplified. A null
    /// text stands for a line that it would not print.
    QString decode(const QByteArray &line);

private:
    enum class Block { Header, Comment, Entries, Totals };

    bool isComment(const QString &line);
    QString decodeExtraction(const QString &line);
    QString decodeListing(const QString &line);
    QString decodeHeader(const QString &line);
    QString decodeEntry(const QString &line);
    QString decodeTotals(const QString &line);

    ArchiverDialect dialect_;
    ArchiverOperation operation_;
    Block block_ = Block::Header;
};

} // namespace Vorn::Util::Platform
