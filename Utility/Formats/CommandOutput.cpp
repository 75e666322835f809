#include <Utility/Formats/CommandOutput_p.h>

#include <algorithm>

namespace Vorn::Util::Formats {

namespace {

constexpr std::size_t PieceSize = 199;

// The bytes up to and including the line end, but at most PieceSize.
std::string_view firstPiece(std::string_view output)
{
    const std::string_view piece = output.substr(0, PieceSize);
    const std::size_t lineEnd = piece.find('\n');
    return lineEnd == std::string_view::npos ? piece : piece.substr(0, lineEnd + 1);
}

QString decode(std::string_view piece)
{
    const std::size_t length = std::min(piece.find('\0'), piece.size());
    return QString::fromUtf8(piece.data(), static_cast<int>(length));
}

} // namespace

qint64 neededOutput(int maxLines)
{
    constexpr auto Size = static_cast<qint64>(PieceSize);
    return (std::max<qint64>(maxLines, -1) + 2) * Size;
}

// Returns two lines more than asked for, and one empty line for no output.
// Kept for compatibility: see "Command output" in docs/compatibility.md.
QStringList outputLines(std::string_view output, int maxLines)
{
    QStringList lines;
    qint64 count = 0;
    do {
        const std::string_view piece = firstPiece(output);
        output.remove_prefix(piece.size());
        lines.append(decode(piece));
    } while (count++ <= maxLines && !output.empty());
    return lines;
}

} // namespace Vorn::Util::Formats
