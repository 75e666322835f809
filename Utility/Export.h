#pragma once

#include <QtCore/qglobal.h>

/// Marks the classes and functions that the shared library exports. Define `VORNUTILITY_STATIC` to
/// link the object files instead of the shared library, as the tests of internal classes do.
#if defined(VORNUTILITY_STATIC)
#define VORNUTILITY_EXPORT
#elif defined(VORNUTILITY_BUILD)
#define VORNUTILITY_EXPORT Q_DECL_EXPORT
#else
#define VORNUTILITY_EXPORT Q_DECL_IMPORT
#endif
