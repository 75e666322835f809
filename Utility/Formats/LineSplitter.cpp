#include <Utility/Formats/LineSplitter_p.h>

#include <Utility/QtVersion_p.h>

#include <algorithm>

namespace Vorn::Util::Formats {

QList<QByteArray> LineSplitter::add(const QByteArray &block)
{
    QList<QByteArray> lines;
    for (QtVersion::Size from = 0; from < block.size();) {
        const QtVersion::Size end = block.indexOf('\n', from);
        const QtVersion::Size length = (end < 0 ? block.size() : end) - from;
        partialLine_.append(block.constData() + from,
                            std::min(length, MaxLineLength - partialLine_.size()));
        if (end < 0)
            break;
        lines << partialLine_ + '\n';
        partialLine_.clear();
        from = end + 1;
    }
    return lines;
}

} // namespace Vorn::Util::Formats
