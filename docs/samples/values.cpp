#include "Samples.h"

#include <Utility/Enum.h>
#include <Utility/TextConversions.h>
#include <Utility/Xml.h>

using namespace Vorn::Util;

namespace {

//! [enum]
class Colour : public Enum
{
public:
    static const Colour Red, Green;
    static Enum named(const QString &name) { return fromString("Colour", name); }

private:
    Colour(const QString &name)
        : Enum("Colour", name)
    {
    }
};
const Colour Colour::Red("Red");     // value 0
const Colour Colour::Green("Green"); // value 1
//! [enum]

} // namespace

int Samples::valueOfGreen()
{
    //! [enum lookup]
    const int value = Colour::named("Green").toValue(); // 1
    //! [enum lookup]
    return value;
}

bool Samples::needsConversion(const Version &version)
{
    bool isConverted = false;
    const auto convert = [&isConverted] { isConverted = true; };
    const QString text = version.toString();
    //! [version]
    if (Version(text) < Version::Current) // for example "23.1.12"
        convert();
    //! [version]
    return isConverted;
}

int Samples::readCores(QDomDocument &document)
{
    //! [xml]
    QDomElement root = document.documentElement();
    root.appendChild(Xml::textElement("cores", "8", document));
    int cores = Xml::valueOf("cores", root, "1").toInt();
    //! [xml]
    return cores;
}

QString Samples::convertText(std::string &result)
{
    //! [text]
    std::string name = toStdString(QStringLiteral("Träger.dat"));
    QString again = toQString(name);
    //! [text]
    result = name;
    return again;
}
