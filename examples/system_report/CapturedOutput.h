#pragma once

#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

namespace SystemReport {

/// Keeps what is printed to the standard output while the object exists. Some functions of the
/// library print there. Use one object at a time.
class CapturedOutput
{
public:
    CapturedOutput();
    ~CapturedOutput();

    /// Prints to the standard output again. Returns what was printed, without white space at its
    /// ends.
    QString end();

private:
    Q_DISABLE_COPY(CapturedOutput)

    QString file() const;

    QTemporaryDir folder_;
    int standardOutput_;
};

} // namespace SystemReport
