#pragma once

#include <QtCore/QStringList>

/// What a command line of the tests can do: "print HEX", "print-error HEX", "print-lines COUNT",
/// "print-arguments TEXT...", "print-variable NAME", "copy FROM TO", "wait-for FILE",
/// "hang HEX FILE". The line ends are "\r\n" on every system.
///
/// "hang" prints and goes on until its standard input ends; then it creates FILE.
///
/// False when \a behaviour is none of them.
bool runCommandBehaviour(const QByteArray &behaviour, const QStringList &arguments);
