/*
 * What the files of `place` share: pieces, which are to be placed, and locations, where they may
 * go.
 *
 * place.c       the course of things, and the table at the end
 * place_elf.c   sections of object files become pieces
 * place_walk.c  the callbacks of a walk: which piece goes to which location
 * place_room.c  the room that a location has left, and what lies there through the mappings
 */
#ifndef PLACE_H
#define PLACE_H

#include <stddef.h>
#include <stdint.h>

#include <tdm_c/tdm.h>
#include <tdm_c/tdm_inspect.h>

/* The attributes of a piece. Every piece can be read. */
enum { writable = 1, executable = 2, initialised = 4, scratch = 8, blank = 16 };

/* A section of an object file, its load-time copy, or an area that the layout makes. */
typedef struct piece {
  char *name;
  const char *from;        /* the object file, or what it is in parentheses */
  unsigned attributes;     /* of the enumeration above */
  int64_t size, alignment; /* in bits */
  tdm_section *section;    /* null for an area */
  struct piece *copy;      /* its load-time copy, or null */
  int is_copy;
  int placed;             /* what follows counts only then */
  int inside;             /* in an area that takes up the room for it */
  tdm_space *space;       /* of an area also before it is placed: where it belongs */
  tdm_space *load_space;  /* where its copy goes */
  int64_t address, units; /* in MAUs of the space */
  tdm_memory *memory;
  tdm_addressvalue offset;
} piece;

typedef struct pieces {
  piece **items;
  size_t count;
} pieces;

/* A stretch of a space that may be filled, from `low` on, which moves up. */
typedef struct window {
  int64_t low, high;
  int reserved; /* what the description reserves may be used */
} window;

typedef struct location {
  window *windows;
  size_t count, current;
  int64_t start;
  int is_address; /* the first piece goes to `start`, and nowhere else */
  int is_default; /* no place is written: any window that has room will do */
  int inside;     /* see piece */
} location;

/* Bits of a memory that are in use. */
typedef struct taken {
  const tdm_memory *memory;
  int64_t low, high;
} taken;

/* A stretch of the space that a memory stands behind. */
typedef struct stretch {
  int64_t low, high;
  int type, reserved, priority;
} stretch;

/* A scope of the walk: a group, or a section that the layout makes. */
typedef struct scope {
  struct scope *outer;
  location *where; /* null: that of the outer scope */
} scope;

typedef struct linker {
  int failed;
  pieces all, placed; /* in the order of their making, and of their placing */
  taken *taken;
  size_t taken_count;
  /* The space that is worked on. */
  tdm_space *space;
  tdm_space *copytable_space; /* of its core; null if there is none */
  int mau;
  stretch *stretches;
  size_t stretch_count;
  location *rom, *ram; /* for what no group gives a place */
  scope *scope;
} linker;

/* place.c */
void fail(linker *l, const char *format, ...);
void *grow(void *items, size_t count, size_t size); /* room for one more */
piece *add_piece(linker *l, const char *name, const char *from);
/* A section, and its copy if it is initialised data; size and alignment in bits. */
void add_section(linker *l, const char *name, const char *from, unsigned attributes, int64_t size,
                 int64_t alignment);

/* place_elf.c */
void read_object(linker *l, const char *path);

/* place_walk.c */
void walk_space(linker *l, tdm_space *space);

/* place_room.c */
void enter_space(linker *l, tdm_space *space);
void leave_space(linker *l);
void take_range(linker *l, int64_t low, int64_t high);
location *location_of_address(linker *l, int64_t address);
location *location_of_group(linker *l, tdm_group_location *given);
location *location_inside(const piece *area);
void free_location(location *where);
/* Places a piece, there or, for null, where its attributes lead it. Without room that fails. */
void place(linker *l, location *where, piece *what, int64_t alignment);

#endif
