// The input is a file "SystemInfo.xml".

#include "Fuzz.h"

#include <Utility/CpuInfo.h>

#include <QtCore/QTemporaryDir>

using namespace Vorn::Util;

int LLVMFuzzerInitialize(int *, char ***)
{
    qInstallMessageHandler(ignoreMessages);
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("SystemInfo.xml"));
    const QByteArray content = bytesOf(data, size);
    writeFile(name, content);

    const CpuInfo info(nullptr, folder.path());
    const CpuInfo again(nullptr, folder.path());
    CHECK(info.processorCount() == again.processorCount());
    CHECK(info.coreCount() == again.coreCount());
    CHECK(info.coresPerProcessor() == again.coresPerProcessor());
    CHECK(info.isHyperThreadingOn() == again.isHyperThreadingOn());
    CHECK(contentOf(name) == content);
    return 0;
}
