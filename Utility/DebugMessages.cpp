#include <Utility/DebugMessages_p.h>

namespace Vorn::Util {

Q_LOGGING_CATEGORY(debugMessages, "vorn.utility")

} // namespace Vorn::Util
