// A module of a process that registers two members of the type "Shared" when it is loaded, named
// after MODULE_NAME.

#include <Utility/Enum.h>

namespace {

QString typeName()
{
    return QStringLiteral("Shared");
}

class Shared : public Vorn::Util::Enum
{
public:
    explicit Shared(const char *name)
        : Enum(typeName(), QString::fromLatin1(name))
    {
    }

    Shared(const char *name, int value)
        : Enum(typeName(), QString::fromLatin1(name), value)
    {
    }

    using Enum::id;
};

const Shared automatic(MODULE_NAME ".automatic");
const Shared explicitly(MODULE_NAME ".explicit", MODULE_VALUE);

} // namespace

extern "C" {

Q_DECL_EXPORT int idOfAutomatic()
{
    return automatic.id();
}

Q_DECL_EXPORT int idOfExplicit()
{
    return explicitly.id();
}

/// The value of the member \a name, looked up from this module.
Q_DECL_EXPORT int valueOf(const char *name)
{
    return Vorn::Util::Enum::fromString(typeName(), QString::fromLatin1(name)).toValue();
}
}
