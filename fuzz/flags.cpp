// The first line of the input is a flag, the rest is a flags file in which it is looked for.

#include "Fuzz.h"

#include <Utility/System.h>

#include <QtCore/QTemporaryDir>

#include <algorithm>

using namespace Vorn::Util;

namespace {

bool namesFlag(const QString &line, const QString &flag)
{
    const auto isSpace = [](QChar character) { return character.isSpace(); };
    const auto begin = std::find_if_not(line.cbegin(), line.cend(), isSpace);
    const auto end = std::find_if(begin, line.cend(), isSpace);
    return std::equal(begin, end, flag.cbegin(), flag.cend());
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir home;
    qputenv("XDG_DATA_HOME", QFile::encodeName(home.path()));
    static const QString folder = System::getFlagsDirPath();
    CHECK(folder.startsWith(home.path()));

    const QByteArray bytes = bytesOf(data, size);
    const int lineEnd = bytes.indexOf('\n');
    const QString flag = textOf(bytes.left(lineEnd));
    const QByteArray content = bytes.mid(lineEnd + 1);
    writeFile(folder + QLatin1String("/VORN_flags.txt"), content);

    const bool isSet = System::isFlagSet(flag);
    // The simple check can read only valid UTF-8 with Linux line ends.
    const QStringList lines = linesOf(content);
    if (content.contains('\r') || lines.join(QLatin1Char('\n')).toUtf8() != content)
        return 0;
    const bool isThere = std::any_of(lines.cbegin(), lines.cend(),
                                     [&](const QString &line) { return namesFlag(line, flag); });
    CHECK(flag.isEmpty() || isSet == isThere);
    return 0;
}
