// The input is a version as text.

#include "Fuzz.h"

#include <Utility/Version.h>

using namespace Vorn::Util;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text = textOf(bytesOf(data, size));
    const Version before(7, 8, 9, 3);
    Version version = before;
    version.fromString(text);
    if (text.count(QLatin1Char('.')) == 2) {
        CHECK(version.developmentStage() == 0);
        CHECK(version == Version(text));
        CHECK(version == Version(version.toString()));
    } else {
        CHECK(version == before && version.developmentStage() == 3);
    }
    CHECK(version.isValid() == (version.major() != 0));
    CHECK(!version.toPublic().isEmpty());
    return 0;
}
