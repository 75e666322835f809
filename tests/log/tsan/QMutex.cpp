// Qt is not instrumented: the thread sanitizer does not see what its mutex orders. In a program
// with this file the mutex reports it.

#include <QtCore/QMutex>

#include <dlfcn.h>
#include <sanitizer/tsan_interface.h>

namespace {

using Function = void (*)(QMutex *);

Function functionOfQt(const char *symbol)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, symbol));
}

} // namespace

void QMutex::lock() QT_MUTEX_LOCK_NOEXCEPT
{
    static const Function lockOfQt = functionOfQt("_ZN6QMutex4lockEv");
    lockOfQt(this);
    __tsan_acquire(this);
}

void QMutex::unlock() noexcept
{
    static const Function unlockOfQt = functionOfQt("_ZN6QMutex6unlockEv");
    __tsan_release(this);
    unlockOfQt(this);
}
