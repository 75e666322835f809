#include "Samples.h"

#include <Utility/Command.h>
#include <Utility/Log.h>
#include <Utility/SevenZip.h>

#include <QtCore/QDebug>

using namespace Vorn::Util;

namespace {

void report(SevenZip::Error error, const QString &output)
{
    qWarning() << error << output;
}

} // namespace

QStringList Samples::runCommand(Log &log)
{
    //! [command]
    Command command(&log);
    QStringList lines = command.runL("echo done", 10, true); // each with its line end
    //! [command]
    return lines;
}

bool Samples::compress(const QString &folder)
{
    //! [archive]
    SevenZip archive;
    archive.setArchiveFile(folder + "/results.7z");
    archive.setCurrentPath(folder); // the names in the archive are relative to this folder
    if (!archive.compressFiles({folder + "/mesh.dat", folder + "/log.txt"}))
        report(archive.error(), archive.output());
    //! [archive]
    return archive.isOk();
}
