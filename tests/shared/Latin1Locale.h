#pragma once

#include <QtCore/QtGlobal>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QtCore/QTextCodec>
#endif

/// While it lives, the encoding of the locale is ISO-8859-1. With Qt 6 on Linux the encoding of
/// every locale is UTF-8, so that it changes nothing there.
class Latin1Locale
{
public:
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    static constexpr bool IsPossible = true;

    Latin1Locale()
        : former_(QTextCodec::codecForLocale())
    {
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    }
    ~Latin1Locale()
    {
        QTextCodec::setCodecForLocale(former_);
    }

private:
    QTextCodec *const former_;
#else
    static constexpr bool IsPossible = false;

    Latin1Locale() { }
    ~Latin1Locale() { }

private:
#endif
    Q_DISABLE_COPY(Latin1Locale)
};
