#pragma once

#include <Utility/Export.h>

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QVector>

namespace Vorn::Util {

/// Base of enumerations whose members have a name and a value that can be found from either side
/// at run time.
///
/// \code
/// class Colour : public Enum
/// {
/// public:
///     static const Colour Red, Green;
///     static Enum named(const QString &name) { return fromString("Colour", name); }
/// private:
///     Colour(const QString &name) : Enum("Colour", name) {}
/// };
/// const Colour Colour::Red("Red");        // value 0
/// const Colour Colour::Green("Green");    // value 1
/// Colour::named("Green").toValue();       // 1
/// \endcode
///
/// Members are registered, usually by static objects, in registries that all modules of the
/// process share and that live until it ends. A member's id is its place in the order of
/// registration; where names or values repeat, the earliest is found.
///
/// Threads: register before other threads look members up; looking up takes no lock.
class VORNUTILITY_EXPORT Enum
{
public:
    ~Enum() = default;

    /// The number of members of \a type; 0 for an unknown type.
    static int count(const QString &type);

    /// The member of that name or value; an invalid one when there is none.
    static Enum fromString(const QString &type, const QString &string);
    static Enum fromValue(const QString &type, int value);

    /// Empty for an invalid member.
    QString toString() const;

    /// -1 for an invalid member.
    int toValue() const;

    bool isValid() const;

    /// Same type and same place in it.
    bool operator==(const Enum &other) const;
    bool operator!=(const Enum &other) const;

protected:
    static const int Invalid = -1; ///< a constant expression, usable in a `case`

    /// An invalid member of no type.
    Enum();

    /// The member \a id of \a type, which has to be registered.
    Enum(const QString &type, int id);

    /// Registers a new member.
    Enum(const QString &type, const QString &string, int value);

    /// Registers a new member whose value is its id, also after a member with a value of its own.
    Enum(const QString &type, const QString &string);

    Enum(const Enum &other);
    Enum &operator=(const Enum &other);

    int id() const;

private:
    void init(const QString &type, const QString &string, int value);
    static QHash<QString, QVector<QString>> &strings();
    static QHash<QString, QVector<int>> &values();
    static QHash<QString, int> &count();

    QString type_;
    int id_;
};

} // namespace Vorn::Util
