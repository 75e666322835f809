#include "Samples.h"

#include <Utility/Registry.h>
#include <Utility/System.h>
#include <Utility/UnicodeFile.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

using namespace Vorn::Util;

QString Samples::makeScratchFile()
{
    //! [folders]
    QFile results(System::getWorkingDirPath() + "/results.dat");
    // The result of getTempFileName() can be a path: take the file name.
    const QString name = QFileInfo(System::getTempFileName("scratch.dat")).fileName();
    QFile scratch(System::getTempDirPath() + "/" + name);
    const bool isNew = scratch.open(QIODevice::WriteOnly | QIODevice::NewOnly);
    //! [folders]
    return isNew && results.fileName().endsWith("/results.dat") ? scratch.fileName() : QString();
}

QString Samples::readInstallationFolder()
{
    QString used;
    const auto use = [&used](const wchar_t *text) { used = QString::fromWCharArray(text); };
    //! [registry]
    wchar_t folder[1024];
    if (Registry::readProductInstallationFolder(folder, nullptr))
        use(folder);
    //! [registry]
    return used;
}

QString Samples::solveInAscii(const QString &folder)
{
    QString solved;
    const auto runSolver = [&solved](const QString &path) {
        if (QFile::exists(path))
            solved = path;
    };
    //! [unicode file]
    {
        UnicodeFile file(folder + "/Träger.dat");
        if (file.isOk())
            runSolver(file.asciiFilePath());
    } // moved back
    //! [unicode file]
    return solved;
}
