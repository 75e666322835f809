#pragma once

#include "TestFiles.h"

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QMap>
#include <QtCore/QString>

/// The files below a folder: relative names, with "/", and contents.
using Tree = QMap<QString, QByteArray>;

inline bool writeTree(const QString &folder, const Tree &tree)
{
    for (auto file = tree.begin(); file != tree.end(); ++file) {
        if (!writeFileInFolder(folder + QLatin1Char('/') + file.key(), file.value()))
            return false;
    }
    return true;
}

inline Tree readTree(const QString &folder)
{
    Tree tree;
    QDirIterator files(folder, QDir::Files | QDir::Hidden | QDir::System,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = files.next();
        tree.insert(QDir(folder).relativeFilePath(file), contentOf(file));
    }
    return tree;
}

/// In bytes, without the names.
inline qint64 sizeOf(const Tree &tree)
{
    qint64 sum = 0;
    for (const QByteArray &bytes : tree)
        sum += bytes.size();
    return sum;
}
