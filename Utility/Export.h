#pragma once

#include <QtCore/qglobal.h>

/// \file
/// The macro that marks what the shared library exports. The other headers include this one.

/// \def VORNUTILITY_EXPORT
/// \ingroup values
/// Marks the classes and functions that the shared library exports. A program has nothing to define
/// before it includes a header. Define `VORNUTILITY_STATIC` to link the object files instead of the
/// shared library, as the tests of internal classes do.
#if defined(VORNUTILITY_STATIC)
#define VORNUTILITY_EXPORT
#elif defined(VORNUTILITY_BUILD)
#define VORNUTILITY_EXPORT Q_DECL_EXPORT
#else
#define VORNUTILITY_EXPORT Q_DECL_IMPORT
#endif
