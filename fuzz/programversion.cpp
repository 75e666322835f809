// A program file with a version block.

#include "Fuzz.h"

#include <Utility/Formats/VersionBlock_p.h>

#include <QtCore/QBuffer>
#include <QtCore/QtEndian>

using namespace Vorn::Util;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray file = bytesOf(data, size);
    QBuffer program;
    program.setData(file);
    CHECK(program.open(QIODevice::ReadOnly));
    const Formats::ProgramVersion version = Formats::versionInProgram(program);
    // The version stands in the file, behind the signature of the block.
    QByteArray words(8, '\0');
    qToLittleEndian(version.high, words.data());
    qToLittleEndian(version.low, words.data() + 4);
    CHECK((version.high == 0 && version.low == 0)
          || (file.contains("\xbd\x04\xef\xfe") && file.contains(words)));
    return 0;
}
