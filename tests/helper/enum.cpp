#include "enum.h"

#include <Utility/Enum.h>

#include <cstdio>
#include <cstdlib>

namespace {

QString typeName()
{
    return QStringLiteral("Colour");
}

class Colour : public Vorn::Util::Enum
{
public:
    Colour(const QString &name, int value)
        : Enum(typeName(), name, value)
    {
    }
};

class Farewell
{
public:
    Farewell() = default;

    ~Farewell()
    {
        const QByteArray name = Vorn::Util::Enum::fromValue(typeName(), 7).toString().toLatin1();
        std::printf("%s of %d\n", name.constData(), Vorn::Util::Enum::count(typeName()));
    }

private:
    Q_DISABLE_COPY(Farewell)
};

} // namespace

int printEnumAtExit()
{
    static const Farewell farewell;
    static const Colour red(QStringLiteral("Red"), 7);
    return EXIT_SUCCESS;
}
