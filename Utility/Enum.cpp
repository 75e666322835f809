#include <Utility/Enum.h>

namespace Vorn::Util {

const int Enum::Invalid;

Enum::Enum()
    : id_(Invalid)
{
}

Enum::Enum(const QString &type, int id)
    : type_(type)
    , id_(id)
{
}

Enum::Enum(const QString &type, const QString &string, int value)
    : type_(type)
    , id_(Invalid)
{
    init(type, string, value);
}

// Kept for compatibility: see "Automatic values" in docs/compatibility.md.
Enum::Enum(const QString &type, const QString &string)
    : Enum(type, string, count(type))
{
}

Enum::Enum(const Enum &other) = default;
Enum &Enum::operator=(const Enum &other) = default;

int Enum::count(const QString &type)
{
    return count().value(type);
}

Enum Enum::fromString(const QString &type, const QString &string)
{
    const auto names = strings().constFind(type);
    return names == strings().cend() ? Enum()
                                     : Enum(type, static_cast<int>(names->indexOf(string)));
}

Enum Enum::fromValue(const QString &type, int value)
{
    const auto numbers = values().constFind(type);
    return numbers == values().cend() ? Enum()
                                      : Enum(type, static_cast<int>(numbers->indexOf(value)));
}

QString Enum::toString() const
{
    return strings().value(type_).value(id_);
}

int Enum::toValue() const
{
    return values().value(type_).value(id_, Invalid);
}

bool Enum::isValid() const
{
    return id_ != Invalid;
}

bool Enum::operator==(const Enum &other) const
{
    return type_ == other.type_ && id_ == other.id_;
}

bool Enum::operator!=(const Enum &other) const
{
    return !(*this == other);
}

int Enum::id() const
{
    return id_;
}

void Enum::init(const QString &type, const QString &string, int value)
{
    strings()[type].append(string);
    values()[type].append(value);
    id_ = count()[type]++;
}

QHash<QString, QVector<QString>> &Enum::strings()
{
    // Never deleted, so that destructors of static objects can still use it.
    static auto &hash = *new QHash<QString, QVector<QString>>;
    return hash;
}

QHash<QString, QVector<int>> &Enum::values()
{
    static auto &hash = *new QHash<QString, QVector<int>>; // never deleted, as above
    return hash;
}

QHash<QString, int> &Enum::count()
{
    static auto &hash = *new QHash<QString, int>; // never deleted, as above
    return hash;
}

} // namespace Vorn::Util
