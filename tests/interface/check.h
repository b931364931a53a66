/* How the clients in C say that something is not so. */
#ifndef CHECK_H
#define CHECK_H

#include <stdio.h>

extern int failures;

#define CHECK(condition)                                                                           \
  do {                                                                                             \
    if (!(condition)) {                                                                            \
      printf("%s:%d: not so: %s\n", __FILE__, __LINE__, #condition);                               \
      ++failures;                                                                                  \
    }                                                                                              \
  } while (0)

#endif
