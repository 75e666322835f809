#pragma once

#include <Utility/Formats/ArchiverDialect_p.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <memory>

namespace Vorn::Util::Formats {

/// Receives what an archiver reports, in the order of its output. What the output does not hold is
/// not reported; a number that cannot be read is 0.
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

    /// Takes the lines in order, each as it was printed; its line end may be missing.
    virtual void readLine(const QByteArray &line) = 0;

protected:
    ArchiverReader() = default;
    Q_DISABLE_COPY(ArchiverReader)
};

/// The reader of an extraction or a listing by a program that speaks \a dialect and puts
/// \a separator between the folders of a name. \a events must outlive it. A compression has no
/// reader: the result is null.
std::unique_ptr<ArchiverReader> makeArchiverReader(ArchiverDialect dialect, char separator,
                                                   ArchiverOperation operation,
                                                   ArchiverEvents &events);

} // namespace Vorn::Util::Formats
