#include <Utility/CpuInfo.h>

#include <Utility/Log.h>
#include <Utility/Platform/Processors.h>
#include <Utility/Xml.h>

#include <QtCore/QDebug>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTextStream>
#include <QtCore/QXmlStreamReader>
#include <QtXml/QDomDocument>

namespace Vorn::Util {

namespace {

// Whether the file might have the document's parser run out of stack, which is recursive: elements
// in elements, or parentheses in a declaration. A declared entity may become anything. No file of
// this kind has declarations, or more than a few elements; a long one has to be right for the
// stricter parser that counts here, too.
bool isDeep(const QString &text)
{
    constexpr int DeepestKnown = 500;
    if (text.contains(QLatin1String("<!ENTITY"))
        || (text.contains(QLatin1String("<!ELEMENT"))
            && text.count(QLatin1Char('(')) > DeepestKnown))
        return true;
    if (text.count(QLatin1Char('<')) <= DeepestKnown)
        return false;
    QXmlStreamReader reader(text);
    reader.setNamespaceProcessing(false);
    int depth = 0;
    while (depth <= DeepestKnown && !reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::StartElement)
            ++depth;
        else if (token == QXmlStreamReader::EndElement)
            --depth;
    }
    return depth > DeepestKnown || reader.hasError();
}

// Never through a link, which somebody may have put there for that.
bool openForWriting(QFile &file)
{
    const QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::Text | QIODevice::NewOnly;
    if (file.open(mode))
        return true;
    // Another process was first: the last one wins.
    const QFileInfo other(file);
    return other.isFile() && !other.isSymLink() && QFile::remove(file.fileName())
        && file.open(mode);
}

} // namespace

QString CpuInfo::InfoFileName = QStringLiteral("SystemInfo.xml");

CpuInfo::CpuInfo(Log *log, const QString &dir)
    : infoFilePath_(dir + QLatin1Char('/') + InfoFileName)
    , log_(log)
{
    // The messages name the file without its folder: callers rely on their text.
    const QFileInfo file(infoFilePath_);
    if (file.exists()) {
        this->log(QStringLiteral("Reading CPU information from %1").arg(InfoFileName));
        // A pipe of that name would keep the caller waiting.
        if (!file.isFile() || !loadFromXml())
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
    // Wide enough for the smallest number over -1, which a file may lead to.
    const qint64 cores = coreCount_;
    return static_cast<int>(cores / (processorCount_ == 0 ? 1 : processorCount_));
}

bool CpuInfo::isHyperThreadingOn() const
{
    return hyperThreading_;
}

bool CpuInfo::getSystemInfo()
{
    const Platform::ProcessorQuery query = Platform::queryProcessors();
    for (const QString &message : query.messages)
        log(message);
    if (!query.ok)
        return false;
    processorCount_ = query.counts.packages;
    coreCount_ = query.counts.cores;
    if (query.counts.tellsSmt)
        hyperThreading_ = query.counts.smt;
    return true;
}

bool CpuInfo::loadFromXml()
{
    QFile file(infoFilePath_);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    const QString text = stream.readAll();
    file.close();

    QDomDocument document;
    if (isDeep(text) || !document.setContent(text))
        return false;
    const QDomElement root = document.documentElement();
    if (isV14Format(root)) {
        loadV14Format(root);
        return true;
    }
    const QString one = QStringLiteral("1");
    processorCount_ = Xml::valueOf(QStringLiteral("processorCount"), root, one).toInt();
    // Wide enough for any two numbers that a file may hold.
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
    root.setAttribute(QStringLiteral("version"), QStringLiteral("24.0"));
    document.appendChild(root);
    const auto append = [&](const QString &name, const QString &text) {
        root.appendChild(Xml::textElement(name, text, document));
    };
    append(QStringLiteral("processorCount"), QString::number(processorCount_));
    append(QStringLiteral("coresPerProcessor"), QString::number(coresPerProcessor()));
    append(QStringLiteral("hyperThreading"),
           hyperThreading_ ? QStringLiteral("on") : QStringLiteral("off"));

    QFile file(infoFilePath_);
    if (!openForWriting(file))
        return false;
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    stream << document.toString(1);
    stream.flush();
    if (stream.status() == QTextStream::Ok && file.error() == QFileDevice::NoError)
        return true;
    file.close();                 // after an error, the object would not remove it
    QFile::remove(infoFilePath_); // half a file could never be read
    return false;
}

void CpuInfo::log(const QString &message)
{
    if (log_)
        log_->append(message);
    else
        qDebug().noquote() << message;
}

} // namespace Vorn::Util
