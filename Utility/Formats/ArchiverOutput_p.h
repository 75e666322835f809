#pragma once

#include <Utility/Formats/ArchiverDialect_p.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <memory>

namespace Vorn::Util::Formats {

/// Receives what a reader finds in the output of an archiver, in the order of the output. What the
/// output does not contain is not reported. A number that cannot be read is 0.
class ArchiverEvents
{
public:
    virtual ~ArchiverEvents() = default;

    virtual void type(const QString &name) = 0;
    virtual void method(const QString &name) = 0;
    virtual void file(const QString &name) = 0;
    virtual void uncompressedSize(qint64 bytes) = 0;
    virtual void compressedSize(qint64 bytes) = 0;

protected:
    ArchiverEvents() = default;
    Q_DISABLE_COPY(ArchiverEvents)
};

/// Reads the output of one run of an archiver.
class ArchiverReader
{
public:
    virtual ~ArchiverReader() = default;

    /// Reads the next line, as it was printed, with or without its line end.
    virtual void readLine(const QByteArray &line) = 0;

protected:
    ArchiverReader() = default;
    Q_DISABLE_COPY(ArchiverReader)
};

/// Creates the reader for the output of an extraction or a listing by a program of the given
/// \a dialect. \a separator is the separator of folders in the names that it prints. The reader
/// reports to \a events, which must exist longer. Null for a compression, whose output is not read.
std::unique_ptr<ArchiverReader> makeArchiverReader(ArchiverDialect dialect, char separator,
                                                   ArchiverOperation operation,
                                                   ArchiverEvents &events);

} // namespace Vorn::Util::Formats
