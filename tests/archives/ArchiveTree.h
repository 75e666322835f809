#pragma once

#include "FileTree.h"
#include "Noise.h"

#include <Utility/SevenZip.h>

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtTest/QtTest>

/// Files that a careless archiver or caller may change: empty, binary, of any line ends.
inline Tree mixedTree()
{
    return {{QStringLiteral("text.txt"), QByteArray("a line that comes again\n").repeated(4000)},
            {QStringLiteral("noise.bin"), noise(50000)},
            {QStringLiteral("empty"), QByteArray()},
            {QStringLiteral("zero.bin"), QByteArray(3, '\0')},
            {QStringLiteral("lines.txt"), "LF\nCR LF\r\nCR\r\x1a end"},
            {QStringLiteral("with blanks/in the name.txt"), "blanks"},
            {QStringLiteral("deep/er/and/deeper/x.txt"), "deep"}};
}

/// The names of an archive's entries in one form for both systems, and in one order.
inline QStringList normalized(const QStringList &names)
{
    QStringList all;
    for (const QString &name : names)
        all << QDir::fromNativeSeparators(name);
    all.sort();
    return all;
}

/// Lists the archive, extracts it to the folder \a out, and compares everything that is reported
/// and extracted. The archive has an entry for each file of \a tree and for each of \a folders.
inline void compareWithArchive(const QString &archive, const QString &out,
                               Vorn::Util::SevenZip::Type type, Vorn::Util::SevenZip::Method method,
                               const Tree &tree, const QStringList &folders = QStringList())
{
    using Vorn::Util::SevenZip;
    const QStringList names = normalized(tree.keys() + folders);
    const qint64 archiveSize = QFileInfo(archive).size();
    const auto otherType = type == SevenZip::Type7z ? SevenZip::TypeZip : SevenZip::Type7z;
    const auto otherMethod = method == SevenZip::LZMA ? SevenZip::Copy : SevenZip::LZMA;
    SevenZip lister;
    lister.setArchiveFile(archive);
    lister.setType(otherType);
    lister.setMethod(otherMethod);
    QVERIFY(lister.listFiles());
    QCOMPARE(normalized(lister.files()), names);
    QCOMPARE(lister.type(), type);
    // The listing of a zip archive has no method.
    QCOMPARE(lister.method(), type == SevenZip::Type7z ? method : otherMethod);
    QCOMPARE(lister.uncompressedSize(), sizeOf(tree));
    if (method == SevenZip::Copy)
        QCOMPARE(lister.compressedSize(), sizeOf(tree));
    QVERIFY(lister.compressedSize() > 0);
    QVERIFY(lister.compressedSize() < archiveSize);

    SevenZip unpacker;
    unpacker.setArchiveFile(archive);
    QVERIFY(unpacker.extractFilesTo(out));
    QCOMPARE(readTree(out), tree);
    QCOMPARE(unpacker.folder(), out);
    QCOMPARE(normalized(unpacker.files()), names);
    QCOMPARE(unpacker.uncompressedSize(), sizeOf(tree));
    QCOMPARE(unpacker.compressedSize(), archiveSize);
}

/// Writes \a tree to the current path of \a archive and packs it under \a names. Compares
/// everything that is reported of the compression and, with the folder \a out, of the finished
/// archive.
inline void roundTrip(Vorn::Util::SevenZip &archive, const QString &out, const Tree &tree,
                      const QStringList &names)
{
    using Vorn::Util::SevenZip;
    const SevenZip::Type type = archive.type();
    const SevenZip::Method method = archive.method();
    QVERIFY(writeTree(archive.currentPath(), tree));
    QVERIFY2(archive.compressFiles(names), qPrintable(archive.output()));
    QCOMPARE(archive.files(), names);
    QCOMPARE(archive.uncompressedSize(), sizeOf(tree));
    QCOMPARE(archive.compressedSize(), QFileInfo(archive.archiveFile()).size());
    compareWithArchive(archive.archiveFile(), out, type, method, tree);
}
