#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>

namespace Vorn::Util::Formats {

/// Splits the output of a program, which arrives in blocks of any size, into lines. The time is
/// linear in the size of the output, and at most MaxLineLength bytes are kept between two blocks.
class LineSplitter
{
public:
    /// In bytes. The rest of a longer line is dropped.
    static constexpr int MaxLineLength = 1 << 20;

    /// The lines that end in \a block, each with one line feed at its end.
    QList<QByteArray> add(const QByteArray &block);

private:
    QByteArray begun_; // the line that has not ended yet
};

} // namespace Vorn::Util::Formats
