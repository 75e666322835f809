// The input is a program file for Windows.

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
    // The file contains the signature of a version block and the two numbers.
    QByteArray words(8, '\0');
    qToLittleEndian(version.high, words.data());
    qToLittleEndian(version.low, words.data() + 4);
    CHECK((version.high == 0 && version.low == 0)
          || (file.contains("\xbd\x04\xef\xfe") && file.contains(words)));
    return 0;
}
