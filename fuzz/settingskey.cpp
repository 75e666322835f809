// The first line of the input is a key path, the other lines are the names of the existing subkeys.

#include "Fuzz.h"

#include <Utility/Formats/RegistryKey_p.h>

#include <QtCore/QRegularExpression>

using namespace Vorn::Util::Formats;

namespace {

void checkRelease(const QString &release, const QStringList &names)
{
    const QString found = greatestRelease(release, names);
    const QString prefix = release.section(QRegularExpression(QStringLiteral("[.x]")), 0, 0);
    CHECK(found.isNull() || names.contains(found));
    CHECK(found.isNull() || found.startsWith(prefix + QLatin1Char('.')));

    const int best = found.isNull() ? -1 : found.mid(prefix.size() + 1).trimmed().toInt();
    const QRegularExpression digits(QStringLiteral("\\A[0-9]{1,9}\\z"));
    for (const QString &name : names) {
        const QString number = name.section(QLatin1Char('.'), 1);
        if (name.section(QLatin1Char('.'), 0, 0) == prefix && digits.match(number).hasMatch())
            CHECK(!found.isNull() && number.toInt() <= best);
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    QStringList names = linesOf(bytesOf(data, size));
    const QString path = names.takeFirst();
    const QString release = path.section(QRegularExpression(QStringLiteral("[/\\\\]")), -1);
    checkRelease(release, names);

    QStringList asked;
    const QString key = resolveKeyPath(path, [&](const QString &parent) {
        asked.append(parent);
        return names;
    });
    if (!release.contains(QLatin1String(".x"))) {
        CHECK(asked.isEmpty());
        CHECK(key.size() == path.size() - (release.size() < path.size() ? 1 : 0));
        CHECK(key.endsWith(release) && path.startsWith(key.chopped(release.size())));
        return 0;
    }
    CHECK(asked.size() == 1 && path.startsWith(asked.first()));
    const QString found = greatestRelease(release, names);
    CHECK(key == asked.first() + QLatin1Char('\\') + (found.isNull() ? release : found));
    return 0;
}
