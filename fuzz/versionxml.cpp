// The input is an XML document whose root is a version.

#include "Fuzz.h"

#include <Utility/Version.h>

using namespace Vorn::Util;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    QDomDocument document;
    document.setContent(bytesOf(data, size));
    Version version(7, 8, 9, 3);
    version.fromElement(document.documentElement());
    CHECK(version.developmentStage() == 3);

    QDomDocument own;
    Version again;
    again.fromElement(version.toElement(own));
    CHECK(again == version);
    return 0;
}
