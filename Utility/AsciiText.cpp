#include <Utility/AsciiText.h>

namespace Vorn::Util {

bool isUnicodeText(const QString &text)
{
    return text.toLatin1() != text.toUtf8();
}

} // namespace Vorn::Util
