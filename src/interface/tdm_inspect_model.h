/**
 * @file
 * What a description says of buses, mappings, memories, cores and spaces, beyond what <tdm_c/tdm.h>
 * gives; where each thing was written. Part of <tdm_c/tdm_inspect.h>.
 *
 * The conventions of tdm.h hold. What they leave open here:
 *
 *  - A list is a new tdm_arr, in the order of the text unless said otherwise: of handles, of texts,
 *    or of records by value. The caller gives it back with tdm_arr_del().
 *  - A function tdm_inspect_get_...() fills a record with all that an object has and tdm.h
 *    doesn't give. Neither pointer may be null. It returns 1; after a failure (no memory left) 0,
 *    with the record as it was. The record has no life of its own: texts, handles and expressions
 *    in it belong to the pool and the spec. A record never changes: what is added later comes
 *    through functions of its own.
 *  - An expression is null where the text gives none.
 */
#ifndef TDM_C_TDM_INSPECT_MODEL_H
#define TDM_C_TDM_INSPECT_MODEL_H

#include <stdint.h>

#include <tdm_c/tdm_inspect_types.h>
#include <tdm_c/tdm_types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ============================================================================================== */
/* Spec, processors, cores                                                                        */
/* ============================================================================================== */

/** The global buses. @return a new array of `tdm_bus *`. */
TDM_API tdm_arr *tdm_inspect_spec_buses(const tdm_spec *spec);

/**
 * The spaces that stand for several at once, one for each group of spaces that a layout or setup
 * names together.
 *
 * @return a new array of `tdm_space *`, in the order of the names of their members. Each is
 *         among the spaces of its core too.
 */
TDM_API tdm_arr *tdm_inspect_spec_clone_spaces(const tdm_spec *spec);

/** The buses of a processor, without those of its cores. @return a new array of `tdm_bus *`. */
TDM_API tdm_arr *tdm_inspect_processor_buses(const tdm_processor *processor);

/** A parameter of a processor's derivative, with the argument of the processor or the default. */
typedef struct tdm_inspect_parameter {
  const char *name; /**< never null */
  const char *text; /**< as tdm_inspect_expression_text() writes it, other parameters replaced by
                         what they mean; null where that can't be told: it names a memory, which
                         means something in a space only, or what there isn't, or itself */
  int64_t value;    /**< what the text comes to; 0 if that isn't known */
  int32_t is_known; /**< 1 if it is; 0 without a text, for what only a link can tell, and where the
                         evaluation fails */
} tdm_inspect_parameter;

/**
 * The parameters that the derivative of a processor has itself, not those of its bases. One that
 * can't be told is no failure: nothing in the description has to use it.
 *
 * @return a new array of tdm_inspect_parameter, in the order of the definition, each name once
 */
TDM_API tdm_arr *tdm_inspect_processor_parameters(const tdm_processor *processor);

/** The buses of a core, those of a derived architecture first. @return a new array of `tdm_bus *`.
 */
TDM_API tdm_arr *tdm_inspect_core_buses(const tdm_core *core);

/** The `space_id_offset` of the core: what was added to the ids of its spaces; 0 without one. */
TDM_API int tdm_inspect_core_space_id_offset(const tdm_core *core);

/** 1 if another core imports this one. */
TDM_API int tdm_inspect_core_is_imported(const tdm_core *core);

/** The cores that this one imports. @return a new array of `tdm_core *`. */
TDM_API tdm_arr *tdm_inspect_core_imported_cores(const tdm_core *core);

/**
 * @name Names that a core mentions
 * The names that layouts, setups and vector tables of a core mention, as often as they do and in
 * the order in which they are met.
 *
 * @{
 */

/** Symbols that assignments define. @return a new array of `const char *`. */
TDM_API tdm_arr *tdm_inspect_core_assigned_symbols(const tdm_core *core);

/** Symbols of optional vectors. @return a new array of `const char *`. */
TDM_API tdm_arr *tdm_inspect_core_optional_symbols(const tdm_core *core);

/** Symbols that have to be there: one, or a run of numbered ones. */
typedef struct tdm_inspect_required_symbol {
  const char *name; /**< the symbol, or what stands before the numbers */
  int64_t count;    /**< 0: the symbol `name`; else symbols `name` and a number, 0 to count - 1 */
} tdm_inspect_required_symbol;

/** Symbols that have to be there. @return a new array of tdm_inspect_required_symbol. */
TDM_API tdm_arr *tdm_inspect_core_required_symbols(const tdm_core *core);

/** Sections that selections and vector tables name without wildcards. @return a new array of
 *  `const char *`. */
TDM_API tdm_arr *tdm_inspect_core_referenced_names(const tdm_core *core);

/** The names of all groups of the core's layouts. @return a new array of `const char *`, each once,
 *  in ascending order. */
TDM_API tdm_arr *tdm_inspect_core_group_names(const tdm_core *core);

/** @} */

/* ============================================================================================== */
/* Mappings                                                                                       */
/* ============================================================================================== */

/**
 * @name Mappings of an object
 * Each list is a new array of `tdm_mapping *`. A `map` of a bus gives two mappings, one for each
 * direction. Those of a clone space are made by the library and have no place in a file.
 *
 * @{
 */

/** Mappings that leave a space, in the order in which a translation tries them. */
TDM_API tdm_arr *tdm_inspect_space_outgoing_mappings(const tdm_space *space);

/** Mappings that reach a space, from other spaces. */
TDM_API tdm_arr *tdm_inspect_space_incoming_mappings(const tdm_space *space);

/** Mappings that come from the definition of a space. */
TDM_API tdm_arr *tdm_inspect_space_own_mappings(const tdm_space *space);

/** Mappings that leave a bus, in the order in which a translation tries them. */
TDM_API tdm_arr *tdm_inspect_bus_outgoing_mappings(const tdm_bus *bus);

/** Mappings that reach a bus. */
TDM_API tdm_arr *tdm_inspect_bus_incoming_mappings(const tdm_bus *bus);

/** Mappings that come from the definition of a bus. */
TDM_API tdm_arr *tdm_inspect_bus_own_mappings(const tdm_bus *bus);

/** Mappings that reach a memory, in the order in which a translation back tries them. */
TDM_API tdm_arr *tdm_inspect_memory_incoming_mappings(const tdm_memory *memory);

/** Mappings that come from the definition of a memory. */
TDM_API tdm_arr *tdm_inspect_memory_own_mappings(const tdm_memory *memory);

/** @} */

/**
 * All of a mapping, with what isn't written filled in. Source and destination are those of a
 * translation forward: a memory is always the destination, and a map that is written in a memory or
 * in a global bus names its source with `dest`.
 */
typedef struct tdm_inspect_mapping {
  const char *name;                /**< the name behind `map`; null without one */
  tdm_mapsource *source;           /**< a space or a bus, see tdm_mapsource_is_bus() */
  tdm_mapdestination *destination; /**< a bus, a space or a memory */
  int64_t src_offset;              /**< in MAUs of the source */
  int64_t dest_offset;             /**< in MAUs of the destination */
  int64_t size;                    /**< in MAUs of the source */
  int32_t src_width;      /**< data lines of the source: the width of a bus, else the MAU; bits */
  int32_t src_line_low;   /**< first data line of the source that is connected, from 0 */
  int32_t src_line_high;  /**< last one, included */
  int32_t dest_width;     /**< the same of the destination */
  int32_t dest_line_low;  /**< goes with src_line_low */
  int32_t dest_line_high; /**< last one, included */
  int32_t bank;           /**< the one bank of the source that it serves; -1 for any */
  int32_t dest_bank;      /**< the bank that it selects at the destination; -1 for none */
  int32_t reserved;       /**< 1 or 0 */
  int32_t priority;       /**< what a step forward adds, 0x10000 for 1; backward it is subtracted */
  int32_t exec_priority;  /**< the same for execution */
  tdm_interval source_interval;      /**< what it covers at the source: addresses and lines */
  tdm_interval destination_interval; /**< where that appears */
} tdm_inspect_mapping;

/** Everything of a mapping. @return 1, or 0 after a failure, with the record as it was */
TDM_API int tdm_inspect_get_mapping(const tdm_mapping *mapping, tdm_inspect_mapping *out);

/* ============================================================================================== */
/* Memories, fills                                                                                */
/* ============================================================================================== */

/** `priority` or `speed` of a memory, a whole number; 1 if none is given. */
TDM_API int tdm_inspect_memory_priority(const tdm_memory *memory);

/** `exec_priority`, a whole number; the priority if none is given. */
TDM_API int tdm_inspect_memory_exec_priority(const tdm_memory *memory);

/** `write_unit` as it is written; 1 if none is given. */
TDM_API int tdm_inspect_memory_write_unit(const tdm_memory *memory);

/** The values that a fill repeats. @return a new array of `tdm_expression *`, empty for a bare
 *  `fill`. */
TDM_API tdm_arr *tdm_inspect_fillspec_values(const tdm_fillspec *fill);

/** The alignment behind the colon of a fill. @return null if none is given. */
TDM_API tdm_expression *tdm_inspect_fillspec_alignment(const tdm_fillspec *fill);

/* ============================================================================================== */
/* Spaces                                                                                         */
/* ============================================================================================== */

/** How the space came to be, see enum tdm_space_kind. */
TDM_API int tdm_inspect_space_kind(const tdm_space *space);

/** The spaces that a clone space stands for. @return a new array of `tdm_space *`; empty for all
 *  other spaces. */
TDM_API tdm_arr *tdm_inspect_space_members(const tdm_space *space);

/** Its stacks. @return a new array of `tdm_stack_def *`; setups of a space append to its own. */
TDM_API tdm_arr *tdm_inspect_space_stacks(const tdm_space *space);

/** Its heaps. @return a new array of `tdm_heap_def *`. */
TDM_API tdm_arr *tdm_inspect_space_heaps(const tdm_space *space);

/** Its vector tables. @return a new array of `tdm_vector_table *`. */
TDM_API tdm_arr *tdm_inspect_space_vector_tables(const tdm_space *space);

/** Its reserved ranges. @return a new array of `tdm_reserved_range *`. */
TDM_API tdm_arr *tdm_inspect_space_reserved_ranges(const tdm_space *space);

/** Its layouts. @return a new array of `tdm_section_layout *`. */
TDM_API tdm_arr *tdm_inspect_space_section_layouts(const tdm_space *space);

/** Its copy table. @return null if it has none. */
TDM_API tdm_copy_table *tdm_inspect_space_copy_table(const tdm_space *space);

/** Its direct initialisation. @return null if it has none. */
TDM_API tdm_direct_init *tdm_inspect_space_direct_init(const tdm_space *space);

/** Its banks. @return null if it has none. */
TDM_API tdm_bank_def *tdm_inspect_space_bank_def(const tdm_space *space);

/** The ids of the spaces that sections in this one must not refer to. @return a new array of 32-bit
 *  numbers by value (element_size 4), ascending. */
TDM_API tdm_arr *tdm_inspect_space_prohibited_spaces(const tdm_space *space);

/** What its setups say with `modify input`. @return a new array of `tdm_input_modification *`. */
TDM_API tdm_arr *tdm_inspect_space_input_modifications(const tdm_space *space);

/* ============================================================================================== */
/* Definitions of a space                                                                         */
/* ============================================================================================== */

/** Where execution starts. */
typedef struct tdm_inspect_start_address {
  const char *symbol;      /**< never null */
  tdm_expression *address; /**< `run_addr`, in MAUs of the space */
  int32_t bank;            /**< -1 if none is given */
} tdm_inspect_start_address;

/** All of a start address. @return 1, or 0 after a failure */
TDM_API int tdm_inspect_get_start_address(const tdm_start_address *start,
                                          tdm_inspect_start_address *out);

/** The least size of a stack, as an expression; in MAUs of the space. */
TDM_API tdm_expression *tdm_inspect_stack_def_minimal_size(const tdm_stack_def *definition);

/** Which way a stack grows, see enum tdm_locate_direction. */
TDM_API int tdm_inspect_stack_def_direction(const tdm_stack_def *definition);

/** The id of a stack. @return null if none is given. */
TDM_API tdm_expression *tdm_inspect_stack_def_id(const tdm_stack_def *definition);

/** The least size of a heap, as an expression; in MAUs of the space. */
TDM_API tdm_expression *tdm_inspect_heap_def_minimal_size(const tdm_heap_def *definition);

/** Which way a heap grows, see enum tdm_locate_direction. */
TDM_API int tdm_inspect_heap_def_direction(const tdm_heap_def *definition);

/** Where sections of a space are copied to at startup. */
typedef struct tdm_inspect_copy_destination {
  tdm_space *source;      /**< the space whose sections are meant */
  tdm_space *destination; /**< the space that they are copied to */
} tdm_inspect_copy_destination;

/** A copy table, without its lists. */
typedef struct tdm_inspect_copy_table {
  const char *name;                 /**< of the section that holds the table */
  int64_t alignment;                /**< in MAUs of the space; 1 if none is given */
  int64_t copy_unit;                /**< in MAUs of the space; 0 if none is given */
  tdm_space *default_destination;   /**< null if none is given */
  int32_t page_restrict_rom_copies; /**< 1 if copies in rom must not cross the end of a page */
} tdm_inspect_copy_table;

/** All of a copy table but its lists. @return 1, or 0 after a failure */
TDM_API int tdm_inspect_get_copy_table(const tdm_copy_table *table, tdm_inspect_copy_table *out);

/** Its destinations. @return a new array of tdm_inspect_copy_destination, each source once, in the
 *  order of the full names of the sources. */
TDM_API tdm_arr *tdm_inspect_copy_table_destinations(const tdm_copy_table *table);

/** The parts of it with a symbol of their own. @return a new array of `tdm_copy_sub_table *`. */
TDM_API tdm_arr *tdm_inspect_copy_table_sub_tables(const tdm_copy_table *table);

/** The symbol of a part of a copy table. */
TDM_API const char *tdm_inspect_copy_sub_table_symbol(const tdm_copy_sub_table *table);

/** The spaces that a part of a copy table serves. @return a new array of `tdm_space *`. */
TDM_API tdm_arr *tdm_inspect_copy_sub_table_spaces(const tdm_copy_sub_table *table);

/** Direct initialisation, without its destinations. */
typedef struct tdm_inspect_direct_init {
  const char *name;               /**< of the section that it makes */
  int64_t alignment;              /**< in MAUs of the space; 1 if none is given */
  tdm_space *default_destination; /**< null if none is given */
} tdm_inspect_direct_init;

/** All of a direct initialisation but its destinations. @return 1, or 0 after a failure */
TDM_API int tdm_inspect_get_direct_init(const tdm_direct_init *init, tdm_inspect_direct_init *out);

/** Its destinations, in the form of those of a copy table. */
TDM_API tdm_arr *tdm_inspect_direct_init_destinations(const tdm_direct_init *init);

/** How code in the banks of a space is called. A text that isn't given is null. */
typedef struct tdm_inspect_bank_def {
  const char *kind;             /**< "jstub": a stub does the whole switch; "bar": each bank has a
                                     switch routine of its own */
  const char *name;             /**< the full name of the space, then ":bank" */
  const char *space_name;       /**< the space whose banks count here too */
  const char *stub_template;    /**< section that stubs are made from */
  const char *stub_prefix;      /**< what their names begin with */
  const char *stub_arg_address; /**< symbol that the address of the callee takes the place of */
  const char *stub_arg_bank;    /**< the same for its bank */
  const char *stub_arg_switch;  /**< the same for the switch routine; this and below: kind "bar" */
  const char *switch_template;  /**< section that switch routines are made from */
  const char *switch_prefix;    /**< what their names begin with */
  const char *switch_arg_bank;  /**< symbol that the number of the bank takes the place of */
} tdm_inspect_bank_def;

/** All of a definition of banks but their numbers. @return 1, or 0 after a failure */
TDM_API int tdm_inspect_get_bank_def(const tdm_bank_def *banks, tdm_inspect_bank_def *out);

/** The numbers of the banks. @return a new array of 32-bit numbers by value (element_size 4),
 *  ascending. */
TDM_API tdm_arr *tdm_inspect_bank_def_banks(const tdm_bank_def *banks);

/** The space that a modified input comes from. @return null if none is named. */
TDM_API tdm_space *tdm_inspect_input_modification_space(const tdm_input_modification *modification);

/** The attributes that it asks for. @return null if none are given. */
TDM_API tdm_section_selector *
tdm_inspect_input_modification_selector(const tdm_input_modification *modification);

/** Its selections. @return a new array of `tdm_selection_statement *`. */
TDM_API tdm_arr *
tdm_inspect_input_modification_selections(const tdm_input_modification *modification);

/* ============================================================================================== */
/* Attributes and selectors                                                                       */
/* ============================================================================================== */

/** Flag `p` of a set of attributes: 1 or 0, as the flags that tdm.h gives. */
TDM_API int tdm_inspect_attributes_is_p(const tdm_attributes *attributes);

/** The attributes that a section must have. @return null if the selector names a file. */
TDM_API tdm_attributes *tdm_inspect_section_selector_required(const tdm_section_selector *selector);

/** The attributes that a section must not have. @return null if the selector names a file. */
TDM_API tdm_attributes *tdm_inspect_section_selector_excluded(const tdm_section_selector *selector);

/** The file that a selector names. @return null if it asks for attributes, as every selector of a
 *  description does. */
TDM_API const char *tdm_inspect_section_selector_file(const tdm_section_selector *selector);

/* ============================================================================================== */
/* Where things were written                                                                      */
/* ============================================================================================== */

/**
 * The keys of an object under which positions are kept: one for each part of its definition whose
 * place is known, "name" or "size" for instance. They aren't fixed words of this interface.
 *
 * @param kind    what the handle is, see enum tdm_object_kind
 * @param object  the handle; not null
 * @return a new array of `const char *`, in the order in which the parts were read; empty for
 *         an object that was not written, and for a kind that there isn't
 */
TDM_API tdm_arr *tdm_inspect_position_keys(int kind, const void *object);

/**
 * Where a part of an object was written.
 *
 * @param kind    what the handle is, see enum tdm_object_kind
 * @param object  the handle; not null
 * @param key     one of tdm_inspect_position_keys(); null finds nothing
 * @param out     receives the position, without pragmas; not null. Left as it is if there is none.
 * @return 1 if the place of that part is known, else 0
 */
TDM_API int tdm_inspect_position(int kind, const void *object, const char *key, tdm_srcpos *out);

#ifdef __cplusplus
}
#endif

#endif
