/**
 * @file
 * The values that cross the interface of tdm_c: opaque handles, arrays, messages, addresses,
 * intervals and the numbers of enumerations. Plain C99, usable from C++ as it is.
 */
#ifndef TDM_C_TDM_TYPES_H
#define TDM_C_TDM_TYPES_H

#include <stdint.h>

/** The first number of the version of the interface. */
#define TDM_C_VERSION_MAJOR 4
/** The second number of the version of the interface. */
#define TDM_C_VERSION_MINOR 0
/** The version of the interface; compare in the preprocessor: `#if TDM_C_VERSION >= 40000`. */
#define TDM_C_VERSION (TDM_C_VERSION_MAJOR * 10000 + TDM_C_VERSION_MINOR * 100)

/** Marks a function that the shared library exports. */
#if defined(__GNUC__)
#define TDM_API __attribute__((visibility("default")))
#else
#define TDM_API
#endif

/** Marks a class that C++ clients may call or derive from. */
#define TDM_CLIENT_API TDM_API

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Handles. Each is the address of an object of the model; the library uses it as it is, with no
 * validation. Handles of one spec die with it (tdm_spec_free).
 */
/** The model of one parse, from tdm_parse_file(). */
typedef struct TDMSpec tdm_spec;
/** A processor of a spec. */
typedef struct TDMProcessor tdm_processor;
/** A core of a processor. */
typedef struct TDMCore tdm_core;
/** A bus: of a core, of a processor, or a global one. */
typedef struct TDMBus tdm_bus;
/** A memory: of a processor, or a global one. */
typedef struct TDMMemory tdm_memory;
/** An address space of a core. */
typedef struct TDMSpace tdm_space;
/** A space or a bus in its role as the source of a mapping, see tdm_mapsource_is_bus(). */
typedef struct TDMMapSource tdm_mapsource;
/** A memory, a bus or a space in its role as the destination of a mapping. */
typedef struct TDMMapDestination tdm_mapdestination;
/** Where something was written: file, line, column. */
typedef struct TDMSourceLocation tdm_source_location;
/** A start address and a size. */
typedef struct TDMRange tdm_range;
/** Where execution starts. */
typedef struct TDMStartAddress tdm_start_address;
/** What a gap is filled with. */
typedef struct TDMFillSpec tdm_fillspec;
/** The flags of a section. */
typedef struct TDMAttributes tdm_attributes;

/* What a walk hands out. */
/** `stack` of a space. */
typedef struct TDMStackDef tdm_stack_def;
/** `heap` of a space. */
typedef struct TDMHeapDef tdm_heap_def;
/** `vector_table` of a space. */
typedef struct TDMVectorTable tdm_vector_table;
/** `copytable` of a space; <tdm_c/tdm_inspect_model.h> reads it. */
typedef struct TDMCopyTable tdm_copy_table;
/** `direct_init` of a space; <tdm_c/tdm_inspect_model.h> reads it. */
typedef struct TDMDirectInit tdm_direct_init;
/** `reserved` of a space. */
typedef struct TDMReservedRange tdm_reserved_range;
/** `section_layout`, one of a space. */
typedef struct TDMSectionLayout tdm_section_layout;
/** An assignment in a layout; <tdm_c/tdm_inspect_layout.h> reads it. */
typedef struct TDMAssignment tdm_assignment;
/** Statements in braces. */
typedef struct TDMBlock tdm_block;
/** `if` in a layout. */
typedef struct TDMIfStatement tdm_if_statement;
/** `section` in a layout: one that is made on the spot. */
typedef struct TDMCreateSectionStatement tdm_create_section_statement;
/** `group` in a layout. */
typedef struct TDMGroup tdm_group;
/** Where a group is to go. */
typedef struct TDMGroupLocation tdm_group_location;
/** `heap` in a layout. */
typedef struct TDMHeapStatement tdm_heap_statement;
/** `memcopy` in a layout; <tdm_c/tdm_inspect_layout.h> reads it. */
typedef struct TDMMemoryCopyStatement tdm_memory_copy_statement;
/** `reserved` in a layout. */
typedef struct TDMReservedStatement tdm_reserved_statement;
/** `select` in a layout. */
typedef struct TDMSelectionStatement tdm_selection_statement;
/** `stack` in a layout. */
typedef struct TDMStackStatement tdm_stack_statement;
/** `struct` in a layout; <tdm_c/tdm_inspect_layout.h> reads it. */
typedef struct TDMStructStatement tdm_struct_statement;
/** `copytable` in a layout. */
typedef struct TDMTableStatement tdm_table_statement;
/** The rules in force at a statement, valid until the end of their scope. */
typedef struct TDMStatementEnv tdm_statement_env;
/** What a `select` asks of the attributes of a section. */
typedef struct TDMSectionSelector tdm_section_selector;

/** A section of the caller's as the library sees it, from tdm_section_create(). */
typedef struct TDMSection tdm_section;

/**
 * An array. The library makes one for each result; give it back with tdm_arr_del(). A caller
 * builds its own for arguments, in the same layout, with elements of pointer size; of those the
 * library reads `items` and `count`.
 */
typedef struct tdm_arr {
  uint32_t element_size; /**< bytes of one element */
  uint32_t capacity;     /**< elements allocated; 32 or more in an array of the library */
  uint32_t count;        /**< elements in use */
  void *items;           /**< capacity * element_size bytes; elements are stored by value */
} tdm_arr;

/** The place of a token of the preprocessor, or of a message. All zero: no place. */
typedef struct tdm_srcpos {
  const char *file;    /**< name as positions show it, from the string pool; null for no place */
  int line;            /**< from 1 */
  int column;          /**< from 1 */
  const void *pragmas; /**< opaque: the pragma values in force */
} tdm_srcpos;

/** One error or warning of the preprocessor. */
typedef struct tdm_message {
  int number;          /**< number in the message catalogue, 948 for instance */
  tdm_srcpos position; /**< where it was reported */
  const char *text;    /**< from the string pool, at most 1,024 characters, without prefix */
  int note;            /**< -1, or the index of a note that belongs to this message; its words come
                            with tdm_inspect_get_message() */
} tdm_message;

/** A position in a space, a bus or a memory, to the bit. */
typedef struct tdm_addressvalue {
  int64_t value; /**< whole MAUs from address 0 */
  int32_t bits;  /**< bit offset inside that MAU, 0 to mau - 1, from the least significant line */
  int32_t mau;   /**< bits of one MAU of the object that the address is meant in */
  int32_t bank;  /**< bank number, or -1 for none */
} tdm_addressvalue;

/**
 * A span of positions, [low, high), with a mask that repeats over the bit addresses from bit
 * address 0: a bit b of the span belongs to the interval if bit (b mod width) of `bits` is set.
 */
typedef struct tdm_interval {
  tdm_addressvalue low;  /**< first position */
  tdm_addressvalue high; /**< first position past the end; the same MAU as low */
  int32_t width;         /**< period of the mask in bits, 1 to 64; 1 with bits 1 is every bit */
  uint64_t bits;         /**< the mask, least significant bit first */
  int32_t priority;      /**< fixed point with 16 fractional bits, 0x10000 is 1 */
  int32_t exec_priority; /**< the same, for execution */
} tdm_interval;

/** One route of a translated interval: what it reaches, and where. */
typedef struct tdm_map_interval_result {
  void *object; /**< tdm_mapdestination * or tdm_memory * forward, tdm_mapsource * backward */
  tdm_interval interval; /**< in MAUs of the object */
  int reserved;          /**< 1 if a mapping on the route is reserved */
} tdm_map_interval_result;

/** One route of a translated address. */
typedef struct tdm_map_address_result {
  void *object; /**< tdm_mapdestination * or tdm_memory * forward, tdm_mapsource * backward */
  tdm_addressvalue address; /**< in MAUs of the object */
  int reserved;             /**< 1 if a mapping on the route is reserved */
} tdm_map_address_result;

/**
 * What a walk may ask of the program that is being linked. Either entry may be null, which answers
 * no. The name is valid during the call.
 */
typedef struct tdm_expression_callbacks {
  /** Whether the caller has a section of that name, for `exists` in the condition of an `if`; any
   *  number but 0 is yes. */
  int (*section_exists)(const char *name, void *user);
  /** Whether the caller has a definition of that symbol. No condition asks: `defined` counts 0 in
   *  all arithmetic, and tdm_inspect_expression_refers_to_defined() answers it. */
  int (*symbol_defined)(const char *name, void *user);
} tdm_expression_callbacks;

/**
 * What tdm_space_walk() calls, in the order in which the entries stand where the text below doesn't
 * say otherwise. A null entry is skipped. What an entry is given stays the library's: definitions
 * and statements are valid while the spec lives, an environment until the end of its scope. Inside
 * a callback every function of the interface may be called, tdm_space_walk() for the same space
 * too, but for those that end the spec or the library. A callback can't stop or turn the walk.
 */
typedef struct tdm_walk_callbacks {
  /** Each stack of the space, in order. */
  void (*stack_def)(tdm_stack_def *definition, void *user);
  /** Each heap of the space, in order. */
  void (*heap_def)(tdm_heap_def *definition, void *user);
  /** Each vector table, in order, before reserved ranges and layouts. */
  void (*vector_table_begin)(tdm_vector_table *table, void *user);
  /** Each vector table, in the same order, behind all layouts. */
  void (*vector_table_end)(tdm_vector_table *table, void *user);
  /** Once, behind the heaps; `table` is null if the space has no copy table. */
  void (*copy_table)(tdm_copy_table *table, void *user);
  /** Once, behind the copy table, if the space has direct initialisation. */
  void (*direct_init)(tdm_direct_init *init, void *user);
  /** Each reserved range, in order, before the layouts. */
  void (*reserved_range)(tdm_reserved_range *range, void *user);
  /** `"symbol" = value;` */
  void (*assignment)(tdm_assignment *statement, tdm_statement_env *env, void *user);
  /** `{`; the statements in it follow, then block_end. */
  void (*block_begin)(tdm_block *block, tdm_statement_env *env, void *user);
  /** `}`; every end has the arguments of its beginning. */
  void (*block_end)(tdm_block *block, tdm_statement_env *env, void *user);
  /** `if`, before its condition is evaluated; the branch that is chosen follows, then if_end. */
  void (*if_begin)(tdm_if_statement *statement, tdm_statement_env *env, void *user);
  /** Behind the branch, also where the condition chose none. */
  void (*if_end)(tdm_if_statement *statement, tdm_statement_env *env, void *user);
  /** `section`; its selections follow, in an environment that inherits nothing. */
  void (*create_section_begin)(tdm_create_section_statement *statement, tdm_statement_env *env,
                               void *user);
  /** Behind the selections of a `section`. */
  void (*create_section_end)(tdm_create_section_statement *statement, tdm_statement_env *env,
                             void *user);
  /** `group`; its statement follows, in the environment `inner`: the rules of `outer` with those of
   *  the group on top. */
  void (*group_begin)(tdm_group *group, tdm_statement_env *outer, tdm_statement_env *inner,
                      void *user);
  /** Behind the statement of a group. */
  void (*group_end)(tdm_group *group, tdm_statement_env *outer, tdm_statement_env *inner,
                    void *user);
  /** `heap` of a layout. */
  void (*heap_statement)(tdm_heap_statement *statement, tdm_statement_env *env, void *user);
  /** `memcopy` */
  void (*memory_copy)(tdm_memory_copy_statement *statement, tdm_statement_env *env, void *user);
  /** `reserved` of a layout. */
  void (*reserved_statement)(tdm_reserved_statement *statement, tdm_statement_env *env, void *user);
  /** Each layout of the space, in order; its statements follow, then section_layout_end. */
  void (*section_layout_begin)(tdm_section_layout *layout, void *user);
  /** Behind the statements of a layout. */
  void (*section_layout_end)(tdm_section_layout *layout, void *user);
  /** `select`; the place to call tdm_selection_statement_get_sections(). */
  void (*selection)(tdm_selection_statement *statement, tdm_statement_env *env, void *user);
  /** `stack` of a layout. */
  void (*stack_statement)(tdm_stack_statement *statement, tdm_statement_env *env, void *user);
  /** `struct` */
  void (*struct_statement)(tdm_struct_statement *statement, tdm_statement_env *env, void *user);
  /** `copytable` of a layout. */
  void (*table_statement)(tdm_table_statement *statement, tdm_statement_env *env, void *user);
} tdm_walk_callbacks;

/**
 * What the library asks of a section of the caller's. Each entry takes the caller's own handle; a
 * null entry counts as no, or as an empty text.
 */
typedef struct tdm_section_functions {
  int (*is_readable)(void *handle);   /**< flag `r`; any number but 0 is yes, here and below */
  int (*is_writable)(void *handle);   /**< flag `w` */
  int (*is_executable)(void *handle); /**< flag `x` */
  int (*is_inited)(void *handle);     /**< flag `i` */
  int (*is_scratch)(void *handle);    /**< flag `s` */
  int (*is_blanked)(void *handle);    /**< flag `b` */
  int (*is_p)(void *handle);          /**< flag `p` */
  /** The name that patterns are compared with; asked once, when the section is created. The text
   *  has to stay valid during the call. */
  const char *(*get_name)(void *handle);
  /** The name that messages use. The text has to stay valid during the call. */
  const char *(*get_display_name)(void *handle);
} tdm_section_functions;

/** What tdm_memory_get_type() gives. */
enum tdm_memory_type {
  TDM_MEMORY_RAM = 1,     /**< `ram` */
  TDM_MEMORY_ROM = 2,     /**< `rom` */
  TDM_MEMORY_NVRAM = 3,   /**< `nvram` */
  TDM_MEMORY_BLOCKRAM = 4 /**< `blockram` */
};

/** What tdm_space_get_locate_direction() gives. */
enum tdm_locate_direction {
  TDM_LOW_TO_HIGH = 0, /**< the low end first; also where the definition says nothing */
  TDM_HIGH_TO_LOW = 1  /**< the high end first */
};

/** The elements of tdm_core_get_endianness(). */
enum tdm_endianness {
  TDM_ENDIANNESS_NOT_SET = 0, /**< none is known */
  TDM_ENDIANNESS_BIG = 1,     /**< the most significant byte first */
  TDM_ENDIANNESS_LITTLE = 2   /**< the least significant byte first */
};

#ifdef __cplusplus
}
#endif

#endif
