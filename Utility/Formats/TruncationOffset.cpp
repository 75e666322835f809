#include <Utility/Formats/TruncationOffset_p.h>

#include <algorithm>

namespace Vorn::Util::Formats {

namespace {

constexpr int PieceSize = 255;

} // namespace

const int LogHeadSize = AmountToTruncate + PieceSize + 1;

// Kept for compatibility: see "Long line in a truncated log" in docs/compatibility.md.
qint64 truncationOffset(const QByteArray &head)
{
    if (head.size() <= AmountToTruncate)
        return head.size();
    // The line that contains byte AmountToTruncate - 1, or the next one if this byte is a line end.
    const int lineStart = head.lastIndexOf('\n', AmountToTruncate - 1) + 1;
    const int nextPiece = lineStart + PieceSize * ((AmountToTruncate - lineStart) / PieceSize + 1);
    const int lineEnd = head.indexOf('\n', AmountToTruncate);
    const int nextLine = lineEnd < 0 ? head.size() : lineEnd + 1;
    return std::min({nextPiece, nextLine, head.size()});
}

} // namespace Vorn::Util::Formats
