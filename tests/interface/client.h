/* What the parts of the client in C share. */
#ifndef CLIENT_H
#define CLIENT_H

#include <stdio.h>
#include <string.h>

#include <tdm_c/tdm.h>

#include "check.h"

#define CHECK_TEXT(text, expected) check_text(__FILE__, __LINE__, text, expected)

void check_text(const char *file, int line, const char *text, const char *expected);

/* That a location is at a place in a file of that name. */
void check_location(const tdm_source_location *location, const char *file, int line, int column);

/* An array of the caller's. */
tdm_arr array_of(void *items, uint32_t count);

/* Walks, and selects sections. */
void walk(const char *file);

/* Compares the calls of whole walks. */
void sequences(const char *file);

#endif
