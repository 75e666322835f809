#include <QtCore/QCoreApplication>
#include <Utility/Log.h>
#include <Utility/SevenZip.h>

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    // The name gets the time, for example pack_2024-03-05-142310.log.
    Vorn::Util::Log log("pack.log", Vorn::Util::Log::WithFileTimeStamp);
    log.open(true);
    Vorn::Util::SevenZip archive;
    archive.setArchiveFile("source.7z");
    const bool packed = archive.compressFiles({"main.cpp", "CMakeLists.txt"});
    log.append(packed ? QString("Packed %1 bytes").arg(archive.uncompressedSize())
                      : archive.output());
    return packed ? 0 : 1;
}
