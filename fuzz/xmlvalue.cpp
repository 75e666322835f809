// The first line of the input is the name of an element, the rest is an XML document in whose root
// the element is looked for.

#include "Fuzz.h"

#include <Utility/Xml.h>

using namespace Vorn::Util;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes = bytesOf(data, size);
    const QString name = textOf(bytes.left(bytes.indexOf('\n')));
    QDomDocument document;
    document.setContent(bytes.mid(bytes.indexOf('\n') + 1));
    const QDomElement root = document.documentElement();

    const QString marker = QStringLiteral("the default");
    const QString value = Xml::valueOf(name, root, marker);
    if (root.namedItem(name).isNull())
        CHECK(value == marker);
    for (QDomNode child = root.firstChild(); !child.isNull(); child = child.nextSibling()) {
        const QString text = Xml::valueOf(child.nodeName(), root, marker);
        if (!root.namedItem(child.nodeName()).hasChildNodes())
            CHECK(text.isEmpty());
    }

    QDomDocument own;
    QDomElement parent = own.createElement(QStringLiteral("parent"));
    parent.appendChild(Xml::textElement(QStringLiteral("child"), value, own));
    CHECK(Xml::valueOf(QStringLiteral("child"), parent, marker) == value);
    CHECK(Xml::stringToBool(value)
          == (value == QLatin1String("true") || value == QLatin1String("Y")));
    return 0;
}
