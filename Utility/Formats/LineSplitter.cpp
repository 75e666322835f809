#include <Utility/Formats/LineSplitter_p.h>

#include <algorithm>

namespace Vorn::Util::Formats {

QList<QByteArray> LineSplitter::add(const QByteArray &block)
{
    QList<QByteArray> lines;
    for (int from = 0; from < block.size();) {
        const int end = block.indexOf('\n', from);
        const int length = (end < 0 ? block.size() : end) - from;
        begun_.append(block.constData() + from, std::min(length, MaxLineLength - begun_.size()));
        if (end < 0)
            break;
        lines << begun_ + '\n';
        begun_.clear();
        from = end + 1;
    }
    return lines;
}

} // namespace Vorn::Util::Formats
