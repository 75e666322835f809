#pragma once

#include <QtCore/QString>

#include <functional>
#include <string>

/// The lines and files that the library and its peers write.
namespace Logs {

constexpr int TextLength = 70;
constexpr int LineLength = TextLength + 12; // "[hh:mm:ss] " and the line end
constexpr int LineCount = 40000;            // stays below the size limit
constexpr int TruncationCount = 20;

constexpr int ThreadCount = 8;
constexpr int LinesPerThread = LineCount / ThreadCount;

/// A text of TextLength characters.
std::string text();

/// A line of LineLength bytes.
std::string line();

/// Calls \a write in ThreadCount threads, LinesPerThread times in each.
void inThreads(const std::function<void()> &write);

/// Makes a log that is one line too large. Returns its path.
QString makeTooLargeLog();

} // namespace Logs
