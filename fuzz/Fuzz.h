#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

// Stops the fuzzer if the condition is false, in release builds too.
#define CHECK(condition)                                                                           \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            std::fprintf(stderr, "%s:%d: CHECK(%s) failed\n", __FILE__, __LINE__, #condition);     \
            std::abort();                                                                          \
        }                                                                                          \
    } while (false)

// The input without a copy, so that the address sanitizer finds every read beyond its end.
inline QByteArray bytesOf(const std::uint8_t *data, std::size_t size)
{
    return QByteArray::fromRawData(reinterpret_cast<const char *>(data), static_cast<int>(size));
}

inline QString textOf(const QByteArray &bytes)
{
    return QString::fromUtf8(bytes.constData(), bytes.size());
}

inline QStringList linesOf(const QByteArray &bytes)
{
    return textOf(bytes).split(QLatin1Char('\n'));
}

inline void writeFile(const QString &name, const QByteArray &content)
{
    QFile file(name);
    CHECK(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    CHECK(file.write(content) == content.size());
}

inline QByteArray contentOf(const QString &name)
{
    QFile file(name);
    CHECK(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

inline void ignoreMessages(QtMsgType, const QMessageLogContext &, const QString &) { }

// Called once before the first input.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);
