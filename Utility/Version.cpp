#include <Utility/Version.h>

#include <Utility/Formats/BranchName_p.h>
#include <Utility/Product_p.h>
#include <Utility/Xml.h>

#include <QtCore/QStringList>

#include <algorithm>
#include <tuple>

namespace Vorn::Util {

const int Version::Major;
const int Version::Minor;
const int Version::Patch;
const int Version::Hotfix;
const int Version::DevStage;

// The constructor is constexpr, so these constants are initialised at compile time, and
// constructors of static objects in other files can use them. The constants themselves are not
// constexpr: then they would be inline variables, which are exported in another way (as unique
// symbols of the process).
const Version Version::Current(Major, Minor, Patch, DevStage);
const Version Version::CurrentRelease(Major, Minor, Hotfix, DevStage);
const QString Version::Public = Product::publicVersion();

namespace {

// Unlike QString::toInt(), allows no white space around the number.
int toNumber(const QString &text)
{
    const bool hasBlanks = std::any_of(text.cbegin(), text.cend(),
                                       [](QChar character) { return character.isSpace(); });
    return hasBlanks ? 0 : text.toInt();
}

} // namespace

Version::Version(const QString &text)
    : Version()
{
    fromString(text);
}

void Version::setVersion(int major, int minor, int patch, int developmentStage)
{
    *this = Version(major, minor, patch, developmentStage);
}

void Version::setDevelopmentStage(int developmentStage)
{
    developmentStage_ = developmentStage;
}

void Version::fromString(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char('.'));
    if (parts.size() == 3)
        setVersion(toNumber(parts.at(0)), toNumber(parts.at(1)), toNumber(parts.at(2)), 0);
}

QString Version::toString() const
{
    return QStringLiteral("%1.%2.%3").arg(major_).arg(minor_).arg(patch_);
}

QString Version::toPublic() const
{
    // The other versions have no special name. The name of this release is Public.
    // Kept for compatibility: see "Public names of versions" in docs/compatibility.md.
    switch (major_) {
    case 9:
        return QStringLiteral("v9");
    case 10:
        return QStringLiteral("v10");
    case 11:
        return QStringLiteral("2010");
    case 12:
        return QStringLiteral("2011");
    default:
        return QString::number(major_);
    }
}

void Version::fromElement(const QDomElement &element)
{
    const QString zero = QStringLiteral("0");
    major_ = Xml::valueOf(QStringLiteral("major"), element, QString()).toInt();
    minor_ = Xml::valueOf(QStringLiteral("minor"), element, QString()).toInt();
    patch_ = Xml::valueOf(QStringLiteral("patch"), element, zero).toInt();
    if (patch_ == 0)
        patch_ = Xml::valueOf(QStringLiteral("build"), element, zero).toInt();
}

QDomElement Version::toElement(QDomDocument &document) const
{
    QDomElement element = document.createElement(QStringLiteral("version"));
    const auto append = [&](const QString &name, int number) {
        element.appendChild(Xml::textElement(name, QString::number(number), document));
    };
    append(QStringLiteral("major"), major_);
    append(QStringLiteral("minor"), minor_);
    append(QStringLiteral("patch"), patch_);
    return element;
}

QString Version::Branch()
{
    return Formats::branchName(QStringLiteral(VORNUTILITY_BRANCH_REFERENCE));
}

bool Version::operator==(const Version &other) const
{
    return major_ == other.major_ && minor_ == other.minor_ && patch_ == other.patch_;
}

bool Version::operator!=(const Version &other) const
{
    return !(*this == other);
}

bool Version::operator<(const Version &other) const
{
    return std::tie(major_, minor_, patch_) < std::tie(other.major_, other.minor_, other.patch_);
}

bool Version::operator<=(const Version &other) const
{
    return !(other < *this);
}

bool Version::operator>(const Version &other) const
{
    return other < *this;
}

bool Version::operator>=(const Version &other) const
{
    return !(*this < other);
}

} // namespace Vorn::Util
