#include <Utility/Formats/AsciiText_p.h>

#include <algorithm>

namespace Vorn::Util::Formats {

bool isUnicodeText(const QString &text)
{
    return std::any_of(text.cbegin(), text.cend(),
                       [](QChar character) { return character.unicode() > 0x7f; });
}

} // namespace Vorn::Util::Formats
