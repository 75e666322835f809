#pragma once

#include <QtCore/QByteArray>

/// Bytes that do not compress, the same in every run.
inline QByteArray noise(int size)
{
    quint32 state = 12345;
    QByteArray bytes;
    for (int i = 0; i < size; ++i) {
        state = state * 1664525U + 1013904223U;
        bytes.append(static_cast<char>(state >> 24U));
    }
    return bytes;
}
