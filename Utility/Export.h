#pragma once

#include <QtCore/qglobal.h>

/// Marks what the shared library exports. `VORNUTILITY_STATIC` is for code that is linked with
/// the library's objects themselves (the project's own tests of internal parts).
#if defined(VORNUTILITY_STATIC)
#define VORNUTILITY_EXPORT
#elif defined(VORNUTILITY_BUILD)
#define VORNUTILITY_EXPORT Q_DECL_EXPORT
#else
#define VORNUTILITY_EXPORT Q_DECL_IMPORT
#endif
