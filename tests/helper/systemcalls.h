#pragma once

#include <QtCore/QStringList>

/// Runs calls of System and Registry in order, such as "getProgramDataPath=VORN 2024". Each state
/// needs a fresh process, because System and Registry keep their results. SystemCalls.h runs them
/// and reads what they print:
/// - "=RESULT" per call that has a result, percent-encoded;
/// - "!TEXT" per message on Qt's debug channel, percent-encoded;
/// - whatever the library itself prints to the standard output.
///
/// Beside the functions: "setVariable=NAME=VALUE", "removeFolder=PATH", "removeFile=PATH",
/// "printNarrow=TEXT" and "printWide=TEXT" (as C's narrow and wide functions print it), and on
/// Windows "setLastError=CODE" (of the thread). Several arguments: "readRegistryValue=NAME" or
/// "readRegistryValue=NAME|KEYPATH", "startProcess=PROGRAM|ARGUMENT...".
class SystemCalls
{
public:
    SystemCalls();
    ~SystemCalls();
    Q_DISABLE_COPY(SystemCalls)

    /// False when there is no such function.
    bool run(const QString &call);

    /// The exit code of the process.
    int run(const QStringList &calls);
};
