// Writes, when a program ends, how many threads it started to the file that COUNT_THREADS names.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <pthread.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>

static atomic_uint started;

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*function)(void*), void* argument) {
  typedef int (*Create)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
  atomic_fetch_add(&started, 1);
  Create next;
  *(void**)&next = dlsym(RTLD_NEXT, "pthread_create");
  return next(thread, attributes, function, argument);
}

__attribute__((destructor)) static void tell(void) {
  const char* const path = getenv("COUNT_THREADS");
  FILE* const file = path ? fopen(path, "w") : NULL;
  if (!file) return;
  fprintf(file, "%u\n", atomic_load(&started));
  fclose(file);
}
