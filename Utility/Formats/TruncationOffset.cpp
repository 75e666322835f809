#include <Utility/Formats/TruncationOffset_p.h>

#include <Utility/QtVersion_p.h>

#include <algorithm>

namespace Vorn::Util::Formats {

namespace {

constexpr int PieceSize = 255;

} // namespace

const int LogHeadSize = AmountToTruncate + PieceSize + 1;

// Kept for compatibility: see "Long line in a truncated log" in docs/compatibility.md.
qint64 truncationOffset(const QByteArray &head, int amount)
{
    if (head.size() <= amount)
        return head.size();
    // The line that contains the last of the bytes to remove, or the next one if this byte is a
    // line end.
    const QtVersion::Size lineStart = head.lastIndexOf('\n', amount - 1) + 1;
    const QtVersion::Size nextPiece
        = lineStart + PieceSize * ((amount - lineStart) / PieceSize + 1);
    const QtVersion::Size lineEnd = head.indexOf('\n', amount);
    const QtVersion::Size nextLine = lineEnd < 0 ? head.size() : lineEnd + 1;
    return std::min({nextPiece, nextLine, head.size()});
}

} // namespace Vorn::Util::Formats
