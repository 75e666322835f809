#include <Utility/CpuInfo.h>

#include <Utility/DebugMessages_p.h>
#include <Utility/Log.h>
#include <Utility/Platform/Files.h>
#include <Utility/Platform/Processors.h>
#include <Utility/Platform/SmallFile.h>
#include <Utility/Product_p.h>
#include <Utility/QtVersion_p.h>
#include <Utility/Xml.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTextStream>
#include <QtCore/QXmlStreamReader>
#include <QtXml/QDomDocument>

#include <optional>

namespace Vorn::Util {

namespace {

// A document is deleted with a call for each nested element, so too many would overflow the stack.
// Each element has a "<". A DOCTYPE can declare entities that expand to any number of elements.
bool canBeParsed(const QString &text)
{
    constexpr int MaxElements = 2000;
    constexpr QLatin1Char Start('<');
    int elements = 0;
    for (auto at = text.indexOf(Start); at >= 0; at = text.indexOf(Start, at + 1)) {
        if (++elements > MaxElements
            || QStringView(text).mid(at).startsWith(QLatin1String("<!DOCTYPE")))
            return false;
    }
    return true;
}

// Gives the same text as a QTextStream with the codec UTF-8 in text mode, in a tenth of the time: a
// byte-order mark of UTF-16 or UTF-32 counts, and carriage returns are removed.
QString decoded(const QByteArray &content)
{
    return QtVersion::decodedUnicode(content).remove(QLatin1Char('\r'));
}

} // namespace

QString CpuInfo::InfoFileName = QStringLiteral("SystemInfo.xml");

CpuInfo::CpuInfo(Log *log, const QString &dir)
    : infoFilePath_(dir + QLatin1Char('/') + InfoFileName)
    , log_(log)
{
    // The messages name the file without its folder.
    // Kept for compatibility: see "CpuInfo messages" in docs/compatibility.md.
    if (QFileInfo::exists(infoFilePath_)) {
        this->log(QStringLiteral("Reading CPU information from %1").arg(InfoFileName));
        if (!loadFromXml())
            this->log(QStringLiteral("Cannot read CPU information from %1").arg(InfoFileName));
        return;
    }
    if (!getSystemInfo())
        this->log(QStringLiteral("Could not get CPU information"));
    if (!saveToXml())
        this->log(QStringLiteral("Cannot save CPU information to %1").arg(InfoFileName));
}

int CpuInfo::processorCount() const
{
    return processorCount_;
}

int CpuInfo::coreCount() const
{
    return coreCount_;
}

int CpuInfo::coresPerProcessor() const
{
    // INT_MIN / -1 overflows int, and a file can contain both.
    const qint64 cores = coreCount_;
    return static_cast<int>(cores / (processorCount_ == 0 ? 1 : processorCount_));
}

bool CpuInfo::isHyperThreadingOn() const
{
    return hyperThreading_;
}

bool CpuInfo::getSystemInfo()
{
    const Formats::ProcessorQuery query = Platform::queryProcessors();
    for (const QString &message : query.messages)
        log(message);
    if (!query.ok)
        return false;
    processorCount_ = query.counts.packages;
    coreCount_ = query.counts.cores;
    hyperThreading_ = query.counts.smt.value_or(hyperThreading_);
    return true;
}

bool CpuInfo::loadFromXml()
{
    const std::optional<QByteArray> content = Platform::readSmallFile(infoFilePath_);
    if (!content)
        return false;
    const QString text = decoded(*content);

    // Given the text itself, Qt 5 would use a parser that accepts some malformed documents, such as
    // one with an unknown entity.
    QXmlStreamReader reader(text);
    reader.setNamespaceProcessing(false);
    QDomDocument document;
    if (!canBeParsed(text) || !document.setContent(&reader, false))
        return false;
    const QDomElement root = document.documentElement();
    if (isV14Format(root)) {
        loadV14Format(root);
        return true;
    }
    const QString one = QStringLiteral("1");
    processorCount_ = Xml::valueOf(QStringLiteral("processorCount"), root, one).toInt();
    // The product of two numbers in a file can overflow int.
    const qint64 cores = Xml::valueOf(QStringLiteral("coresPerProcessor"), root, one).toInt();
    coreCount_ = static_cast<int>(cores * processorCount_);
    const QString smt = Xml::valueOf(QStringLiteral("hyperThreading"), root, QString());
    if (!smt.isEmpty()) {
        hyperThreading_ = smt == QLatin1String("on");
        return true;
    }
    log(QStringLiteral(
        "Hyper-threading information is not stored in XML file - query system again"));
    if (!getSystemInfo())
        log(QStringLiteral("Could not get CPU information"));
    return true;
}

bool CpuInfo::isV14Format(const QDomElement &root) const
{
    return root.firstChild().toElement().tagName() == QLatin1String("Info");
}

void CpuInfo::loadV14Format(const QDomElement &root)
{
    const QString value = QStringLiteral("value");
    qint64 coresPerProcessor = 0;
    for (QDomNode node = root.firstChild().firstChild(); !node.isNull();
         node = node.nextSibling()) {
        const QDomElement element = node.toElement();
        if (element.tagName() == QLatin1String("GetNumberOfProcessors"))
            processorCount_ = element.attribute(value).toInt();
        else if (element.tagName() == QLatin1String("GetProcessorCoreCount"))
            coresPerProcessor = element.attribute(value).toInt();
    }
    coreCount_ = static_cast<int>(coresPerProcessor * processorCount_);
}

bool CpuInfo::saveToXml() const
{
    QDomDocument document;
    QDomElement root = document.createElement(QStringLiteral("SystemInformation"));
    root.setAttribute(QStringLiteral("version"), Product::release());
    document.appendChild(root);
    const auto append = [&](const QString &name, const QString &text) {
        root.appendChild(Xml::textElement(name, text, document));
    };
    append(QStringLiteral("processorCount"), QString::number(processorCount_));
    append(QStringLiteral("coresPerProcessor"), QString::number(coresPerProcessor()));
    append(QStringLiteral("hyperThreading"),
           hyperThreading_ ? QStringLiteral("on") : QStringLiteral("off"));

    QFile file(infoFilePath_);
    if (!Platform::openWithoutLink(file))
        return false;
    QTextStream stream(&file);
    QtVersion::setUtf8(stream);
    stream << document.toString(1);
    stream.flush();
    if (stream.status() == QTextStream::Ok && file.error() == QFileDevice::NoError)
        return true;
    // Remove the incomplete file, which could never be read. QFile::remove() needs a closed file.
    file.close();
    QFile::remove(infoFilePath_);
    return false;
}

void CpuInfo::log(const QString &message)
{
    if (log_)
        log_->append(message);
    else
        qCDebug(debugMessages, "%s", qUtf8Printable(message));
}

} // namespace Vorn::Util
