#include <Utility/Xml.h>

namespace Vorn::Util {

QString Xml::boolToString(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

bool Xml::stringToBool(const QString &text)
{
    return text == QLatin1String("true") || text == QLatin1String("Y");
}

QDomElement Xml::textElement(const QString &tagName, const QString &text, QDomDocument &document)
{
    QDomElement element = document.createElement(tagName);
    element.appendChild(document.createTextNode(text));
    return element;
}

QString Xml::valueOf(const QString &name, const QDomElement &element, const QString &defaultValue)
{
    const QDomNode child = element.namedItem(name);
    if (child.isNull())
        return defaultValue;
    const QDomNode content = child.firstChild();
    // toCharacterData() returns nothing for a CDATA section.
    return content.isCDATASection() ? content.nodeValue() : content.toCharacterData().data();
}

} // namespace Vorn::Util
