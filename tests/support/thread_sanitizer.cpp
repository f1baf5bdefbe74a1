// The thread sanitizer takes clone() for fork(), which counts down its own state in the child.
// QProcess shares its memory with the child until that runs the other program, so the state is
// counted down twice, and from then on the sanitizer ignores this thread's locks and reports races
// that are none. This goes around the sanitizer.

#include <cstdarg>

#include <sched.h>

extern "C" int __clone(int (*function)(void*), void* stack, int flags, void* argument, ...);

extern "C" int clone(int (*function)(void*), void* stack, int flags, void* argument, ...) {
    va_list more;
    va_start(more, argument);
    auto* parentThread = va_arg(more, void*);
    auto* storage = va_arg(more, void*);
    auto* childThread = va_arg(more, void*);
    va_end(more);
    return __clone(function, stack, flags, argument, parentThread, storage, childThread);
}
