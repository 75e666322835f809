#pragma once

#include <QtCore/QStringList>

/// What a command line of the tests can do: "print HEX", "print-error HEX", "print-lines COUNT",
/// "print-arguments TEXT...", "print-variable NAME", "copy FROM TO", "wait-for FILE",
/// "print-without-pause DELAY", "run-command OPERATION HEX", "hang HEX FILE". The line ends are
/// "\r\n" on every system.
///
/// "print-without-pause" begins after DELAY milliseconds and ends when nobody takes its output,
/// after 12 seconds at the latest.
/// "run-command" calls Command::run() or runQ() with the text HEX and prints the milliseconds that
/// this took, a blank and the result. "hang" prints and goes on until its standard input ends; then
/// it creates FILE.
///
/// False when \a behaviour is none of them.
bool runCommandBehaviour(const QByteArray &behaviour, const QStringList &arguments);
