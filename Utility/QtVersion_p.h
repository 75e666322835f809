#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtCore/QTextStream>

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#include <QtCore/QStringConverter>
#else
#include <QtCore/QTextCodec>
#endif

/// What differs between Qt 5 and Qt 6. No other file of the library asks for the version of Qt.
namespace Vorn::Util::QtVersion {

/// The type of sizes and positions in Qt's containers: int in Qt 5.
using Size = decltype(QString().size());

/// Makes a text stream read and write UTF-8. Call it after the device was set.
inline void setUtf8(QTextStream &stream)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    stream.setEncoding(QStringConverter::Utf8);
#else
    stream.setCodec("UTF-8");
#endif
}

/// Decodes the bytes before the first null byte, as Qt 5 does with a QByteArray.
inline QString fromUtf8(const QByteArray &bytes)
{
    return QString::fromUtf8(bytes.constData());
}

inline QString fromLatin1(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.constData());
}

/// Decodes UTF-8, or UTF-16 or UTF-32 if the text begins with their byte order mark. The mark is
/// removed.
inline QString decodedUnicode(const QByteArray &content)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    QStringDecoder decoder(
        QStringConverter::encodingForData(content).value_or(QStringConverter::Utf8));
    return decoder.decode(content);
#else
    static QTextCodec *const utf8 = QTextCodec::codecForName("UTF-8");
    QTextCodec::ConverterState state;
    return QTextCodec::codecForUtfText(content, utf8)
        ->toUnicode(content.constData(), content.size(), &state);
#endif
}

/// Decodes a text in the encoding of the locale. A byte order mark is kept.
inline QString decodedLocal(const char *bytes, int length)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    QStringDecoder decoder(QStringConverter::System, QStringConverter::Flag::ConvertInitialBom);
    return decoder.decode(QByteArrayView(bytes, length));
#else
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    return QTextCodec::codecForLocale()->toUnicode(bytes, length, &state);
#endif
}

/// A process that calls a function in the child process, before the program starts. On Linux only.
class ProcessWithChildFunction : public QProcess
{
public:
    explicit ProcessWithChildFunction(void (*function)())
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    {
        setChildProcessModifier(function);
    }
#else
        : function_(function)
    {
    }

protected:
    void setupChildProcess() override
    {
        function_();
    }

private:
    void (*const function_)();
#endif
};

} // namespace Vorn::Util::QtVersion
