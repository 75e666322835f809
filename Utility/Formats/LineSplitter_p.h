#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>

namespace Vorn::Util::Formats {

/// Splits the output of a program into lines. The output is added in blocks of any size. The time
/// is linear in the size of the output. At most MaxLineLength bytes are kept between two blocks.
class LineSplitter
{
public:
    /// The maximum length in bytes. The rest of a longer line is dropped.
    static constexpr int MaxLineLength = 1 << 20;

    /// Adds a block and returns the lines that end in it, each with a line feed at its end.
    QList<QByteArray> add(const QByteArray &block);

private:
    QByteArray partialLine_; // the beginning of a line whose end has not been added yet
};

} // namespace Vorn::Util::Formats
