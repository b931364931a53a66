/* What the parts of the asking client share. */
#ifndef C_ASK_H
#define C_ASK_H

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <tdm_c/tdm.h>
#include <tdm_c/tdm_inspect.h>

#include "check.h"

#define CHECK_TEXT(found, expected) check_text(__FILE__, __LINE__, found, expected)

void check_text(const char *file, int line, const char *found, const char *expected);

/* A text that is put together, and compared with what is expected when it is done. */
void put(const char *format, ...);
#define CHECK_PUT(expected) check_put(__FILE__, __LINE__, expected)
void check_put(const char *file, int line, const char *expected);

/* The part of a name of a file behind its directory. */
const char *base_name(const char *file);

/* An array of one file below the directory of the test. The text lives until the next call. */
tdm_arr *one_file(const char *name);
extern tdm_arr no_texts;

void ask_sources(void);
void ask_overlaps(void);
void ask_routes(void);
void ask_expressions(void);

#endif
