// What the parts of the preload library share beside the shell. It is loaded into any program and may be
// called before its constructors have run, so everything is made on first use.
#ifndef PRELOAD_H
#define PRELOAD_H

#include "shell.h"

#define SHELL_EXPORT __attribute__((visibility("default")))

// The function behind an interposed one.
void* preloadNext(void** cache, const char* name);

// REAL(type, name) is the next definition of `name` as a function of `type`.
#define REAL(type, name)             \
  __extension__({                    \
    static void* next;               \
    (type) preloadNext(&next, name); \
  })

#endif
