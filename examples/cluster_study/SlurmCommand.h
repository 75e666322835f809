#pragma once

#include "CaseProcess.h"

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

#include <functional>

namespace ClusterStudy {

/// Runs the commands of Slurm, one at a time, without waiting for them.
class SlurmCommand : public QObject
{
public:
    struct Answer
    {
        bool isOk = false;      ///< exit code 0
        bool isTooLate = false; ///< ended because it took too long
        QString output;         ///< of a command that succeeded
        QString error;          ///< why it did not
    };
    using Done = std::function<void(const Answer &)>;

    SlurmCommand();

    bool isRunning() const;

    /// Ends a running command at once. Its answer is then neither isOk nor isTooLate.
    void stop();

    /// Starts a command with \a input as its standard input and \a variables added to its
    /// environment. Calls \a done when it has ended. A command that takes too long is ended. Ctrl-C
    /// on the terminal does not reach it. May be called by \a done.
    void run(const QString &program, const QStringList &arguments, const Done &done,
             const QByteArray &input = QByteArray(),
             const QProcessEnvironment &variables = QProcessEnvironment());

private:
    void end();

    QTimer limit_;
    bool isTooLate_ = false;
    Done done_;
    CaseProcess process_;
};

} // namespace ClusterStudy
