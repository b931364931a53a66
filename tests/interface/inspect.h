/* What the parts of the reading client share: lines, and tables of fields. */
#ifndef INSPECT_H
#define INSPECT_H

#include <stddef.h>
#include <stdio.h>
#include <string.h>

#include <tdm_c/tdm.h>
#include <tdm_c/tdm_inspect.h>

#include "check.h"

/* A line begins with the indentation and a title, is put together, and ends. */
void begin(const char *title);
void put(const char *format, ...);
void end(void);
void indent(int by);

/* How a field of a record, or an element of a list, is written. */
enum form {
  NOTHING,
  INT,
  LONG,
  TEXT,
  EXPRESSION,
  SPACE,
  MEMORY,
  CORE,
  MAPPING,
  SOURCE,
  DESTINATION,
  INTERVAL,
  ATTRIBUTES,
  FILL,
  VALUE,
  RANGE,
  PLACE,
  HANDLE
};

typedef struct field {
  const char *name;
  size_t offset;
  enum form form;
} field;

/* clang-format off */
#define FIELD(record, member, form) {#member, offsetof(record, member), form}
#define FIELDS_END {NULL, 0, NOTHING}
/* clang-format on */

/* Tables end with NOTHING; one without a name is of elements that are no records. */
extern const field texts[], numbers[], spaces[], cores[], mappings[], ranges[];

void put_fields(const void *record, const field *fields);
void put_list(const char *title, tdm_arr *list, const field *fields);
void put_positions(int kind, const void *object);
void each(tdm_arr *list, void (*function)(void *handle));

void inspect_spec(tdm_spec *spec);
void inspect_layouts(tdm_space *space);
void inspect_selection(void *handle);
void put_selector(const tdm_section_selector *selector);
void inspect_vector_table(void *handle);

/* Asks for what there isn't. */
void ask_for_nothing(tdm_spec *spec);

#endif
