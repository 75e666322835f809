#include "Sections.h"

#include <Utility/System.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

using namespace Vorn::Util;

namespace SystemReport {

namespace {

constexpr int MaxFlags = 100;
constexpr qint64 MaxFile = 65536; // bytes

// The first words of the lines. System::isFlagSet() decides whether they are flags.
QStringList firstWords(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return {};
    QStringList words;
    const QStringList lines = QString::fromUtf8(file.read(MaxFile)).split(QLatin1Char('\n'));
    for (const QString &line : lines)
        words << line.simplified().section(QLatin1Char(' '), 0, 0);
    words.removeAll(QString());
    words.removeDuplicates();
    return words;
}

} // namespace

Section flags()
{
    Section section;
    section.title = QStringLiteral("Flags");
    const QString file
        = QDir::toNativeSeparators(System::getFlagsDirPath() + QStringLiteral("/VORN_flags.txt"));
    const QStringList words = firstWords(file);
    for (const QString &word : words) {
        if (section.rows.size() < MaxFlags && System::isFlagSet(word))
            section.rows << QStringList{word, QStringLiteral("set")};
    }
    section.remark = section.rows.isEmpty() ? QStringLiteral("No flag is set in %1.").arg(file)
                                            : QStringLiteral("In %1.").arg(file);
    return section;
}

} // namespace SystemReport
