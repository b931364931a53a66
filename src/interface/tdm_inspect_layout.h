/**
 * @file
 * What a description says of the layouts of a space: the tree of statements, groups and where they
 * go, the rules in force at a statement; and vector tables. Part of <tdm_c/tdm_inspect.h>.
 *
 * The conventions of tdm.h and of <tdm_c/tdm_inspect_model.h> hold. A size or an alignment that
 * comes as an expression counts in MAUs of the space of the layout, once it is evaluated. Handles
 * of statements come from the tree below or from a walk: they are the same.
 */
#ifndef TDM_C_TDM_INSPECT_LAYOUT_H
#define TDM_C_TDM_INSPECT_LAYOUT_H

#include <stdint.h>

#include <tdm_c/tdm_inspect_types.h>
#include <tdm_c/tdm_types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ============================================================================================== */
/* The tree of statements                                                                         */
/* ============================================================================================== */

/** Which end of the space a layout fills first, if it says so. @return one of enum
 *  tdm_locate_direction, or -1 for that of the space. */
TDM_API int tdm_inspect_section_layout_direction(const tdm_section_layout *layout);

/** The statements of a layout; never null. */
TDM_API tdm_block *tdm_inspect_section_layout_block(const tdm_section_layout *layout);

/** The statements of a block. @return a new array of `tdm_statement *`. */
TDM_API tdm_arr *tdm_inspect_block_statements(const tdm_block *block);

/** What a statement is, see enum tdm_statement_kind. */
TDM_API int tdm_inspect_statement_kind(const tdm_statement *statement);

/** @{ */
/** The statement by the handle of its kind. @return null for a statement of another kind, and for
 *  null */
TDM_API tdm_assignment *tdm_inspect_statement_assignment(tdm_statement *statement);
TDM_API tdm_block *tdm_inspect_statement_block(tdm_statement *statement);
TDM_API tdm_if_statement *tdm_inspect_statement_if(tdm_statement *statement);
TDM_API tdm_create_section_statement *
tdm_inspect_statement_create_section(tdm_statement *statement);
TDM_API tdm_group *tdm_inspect_statement_group(tdm_statement *statement);
TDM_API tdm_heap_statement *tdm_inspect_statement_heap(tdm_statement *statement);
TDM_API tdm_memory_copy_statement *tdm_inspect_statement_memory_copy(tdm_statement *statement);
TDM_API tdm_reserved_statement *tdm_inspect_statement_reserved(tdm_statement *statement);
TDM_API tdm_selection_statement *tdm_inspect_statement_selection(tdm_statement *statement);
TDM_API tdm_stack_statement *tdm_inspect_statement_stack(tdm_statement *statement);
TDM_API tdm_struct_statement *tdm_inspect_statement_struct(tdm_statement *statement);
TDM_API tdm_table_statement *tdm_inspect_statement_table(tdm_statement *statement);
/** @} */

/* ============================================================================================== */
/* Statements                                                                                     */
/* ============================================================================================== */

/** `"symbol" = value;` or `"symbol" := value;` */
typedef struct tdm_inspect_assignment {
  const char *symbol;    /**< the name on the left */
  tdm_expression *value; /**< never null */
  int32_t plain;         /**< 1 for `=`, 0 for `:=` */
} tdm_inspect_assignment;

/** All of an assignment. @return 1, or 0 after a failure */
TDM_API int tdm_inspect_get_assignment(const tdm_assignment *statement,
                                       tdm_inspect_assignment *out);

/** The condition of an `if`. */
TDM_API tdm_expression *tdm_inspect_if_statement_condition(const tdm_if_statement *statement);

/** The branch for a condition that isn't 0. */
TDM_API tdm_statement *tdm_inspect_if_statement_true_branch(const tdm_if_statement *statement);

/** The branch behind `else`. @return null if there is none. */
TDM_API tdm_statement *tdm_inspect_if_statement_false_branch(const tdm_if_statement *statement);

/** The size of a `heap` in a layout, as an expression. @return null if none is given. */
TDM_API tdm_expression *tdm_inspect_heap_statement_size(const tdm_heap_statement *statement);

/** The size of a `stack` in a layout, as an expression. @return null if none is given. */
TDM_API tdm_expression *tdm_inspect_stack_statement_size(const tdm_stack_statement *statement);

/** The size of a reserved area, as an expression. @return null if none is given. */
TDM_API tdm_expression *
tdm_inspect_reserved_statement_size(const tdm_reserved_statement *statement);

/** What a reserved area is filled with. @return null if nothing is given. */
TDM_API tdm_fillspec *tdm_inspect_reserved_statement_fill(const tdm_reserved_statement *statement);

/** A section that is made on the spot, beside its name and attributes. */
typedef struct tdm_inspect_create_section {
  const char *overflow_name;  /**< `overflow`: where goes what doesn't fit; null if not given */
  tdm_expression *size;       /**< never null: the block size if only that is given */
  tdm_expression *block_size; /**< null if not given */
  tdm_fillspec *fill;         /**< null if not given */
  tdm_statement *statement;   /**< its selections; a block */
} tdm_inspect_create_section;

/** The rest of a section that is made on the spot. @return 1, or 0 after a failure */
TDM_API int tdm_inspect_get_create_section(const tdm_create_section_statement *statement,
                                           tdm_inspect_create_section *out);

/** A copy of the contents of a memory. */
typedef struct tdm_inspect_memory_copy {
  const char *name;   /**< of the section that holds the copy */
  tdm_memory *memory; /**< whose contents are meant */
  tdm_fillspec *fill; /**< null if not given */
} tdm_inspect_memory_copy;

/** All of a `memcopy`. @return 1, or 0 after a failure */
TDM_API int tdm_inspect_get_memory_copy(const tdm_memory_copy_statement *statement,
                                        tdm_inspect_memory_copy *out);

/** The name of the section that a `struct` makes. */
TDM_API const char *tdm_inspect_struct_statement_name(const tdm_struct_statement *statement);

/** `value : size;` of a `struct`. */
typedef struct tdm_inspect_struct_member {
  tdm_expression *value; /**< never null */
  int32_t size;          /**< as it is written */
} tdm_inspect_struct_member;

/** The members of a `struct`. @return a new array of tdm_inspect_struct_member. */
TDM_API tdm_arr *tdm_inspect_struct_statement_members(const tdm_struct_statement *statement);

/** The name of a `select` with its wildcards, as it is written. @return null if it has none. */
TDM_API const char *
tdm_inspect_selection_statement_pattern(const tdm_selection_statement *statement);

/* ============================================================================================== */
/* Groups                                                                                         */
/* ============================================================================================== */

/** The rules of one group, as they are written; tdm_group_get_address() gives where it goes. */
typedef struct tdm_inspect_group {
  const char *name;                /**< null if it has none */
  int32_t contiguous;              /**< `contiguous`: 1 or 0, as all flags here */
  int32_t clustered;               /**< `clustered` */
  int32_t ordered;                 /**< `ordered` */
  int32_t overlay;                 /**< `overlay` */
  int32_t copy;                    /**< `copy` */
  int32_t nocopy;                  /**< `nocopy` */
  int32_t cross_references;        /**< `allow_cross_references` */
  int32_t load_time;               /**< `load_addr` */
  int32_t is_run_address;          /**< the location is that of `run_addr` */
  int32_t paged;                   /**< `page` */
  int32_t priority;                /**< 1 if none is given */
  tdm_expression *alignment;       /**< `align = ` */
  tdm_expression *page_number;     /**< `page = ` */
  tdm_expression *page_size;       /**< `page_size = ` */
  tdm_attributes *attributes;      /**< null if none are given */
  tdm_fillspec *fill;              /**< null if none is given */
  const char *output_section_name; /**< `create_section`; null if none is given */
  tdm_statement *statement;        /**< what the group contains, often a block */
} tdm_inspect_group;

/** The rules of a group. @return 1, or 0 after a failure */
TDM_API int tdm_inspect_get_group(const tdm_group *group, tdm_inspect_group *out);

/** A range in brackets behind the page size of a group. */
typedef struct tdm_inspect_expression_range {
  tdm_expression *low;  /**< first offset in a page; never null */
  tdm_expression *high; /**< the second bound, as it is written; never null */
} tdm_inspect_expression_range;

/** The ranges of each page that a group may use. @return a new array of
 *  tdm_inspect_expression_range. */
TDM_API tdm_arr *tdm_inspect_group_pages(const tdm_group *group);

/**
 * @name Locations as they are written
 * Locations as they are written; tdm.h tells them in numbers of the space. An address that
 * isn't one of a memory is meant in the address literal space, if the space has one.
 *
 * @{
 */

/** How a location is written, see enum tdm_group_location_form. */
TDM_API int tdm_inspect_group_location_form(const tdm_group_location *location);

/** A location that is an address, in the space or in a memory. */
typedef struct tdm_inspect_group_location {
  tdm_space *space;        /**< of the layout */
  tdm_expression *address; /**< in MAUs of the space or memory; null for ranges */
  tdm_memory *memory;      /**< that the address is an offset in; null: an address of the space */
  tdm_mapping *mapping;    /**< of that memory, the only one to be used; null if none is named */
  tdm_srcpos group;        /**< where the group gives the location, for messages about it */
} tdm_inspect_group_location;

/** All of a location but its ranges. @return 1, or 0 after a failure */
TDM_API int tdm_inspect_get_group_location(const tdm_group_location *location,
                                           tdm_inspect_group_location *out);

/** A range of a location. */
typedef struct tdm_inspect_location_range {
  tdm_memory *memory;   /**< that the bounds are offsets in; null: addresses of the space */
  tdm_mapping *mapping; /**< of that memory, the only one to be used; null if none is named */
  tdm_expression *low;  /**< null: from the beginning of the memory */
  tdm_expression *high; /**< null: to the end of the memory */
} tdm_inspect_location_range;

/** The ranges of a location, as they are written. @return a new array of
 *  tdm_inspect_location_range; empty for an address. */
TDM_API tdm_arr *tdm_inspect_group_location_ranges(const tdm_group_location *location);

/** @} */

/* ============================================================================================== */
/* The environment of a statement                                                                 */
/* ============================================================================================== */

/**
 * The rules in force at a statement: those of all groups around it, put together. Comes from a
 * walk, and what it refers to is the spec's.
 */
typedef struct tdm_inspect_statement_env {
  int32_t contiguous;             /**< `contiguous`: 1 or 0, as all flags here */
  int32_t clustered;              /**< `clustered` */
  int32_t ordered;                /**< `ordered` */
  int32_t overlay;                /**< `overlay` */
  int32_t copy;                   /**< `copy` */
  int32_t nocopy;                 /**< `nocopy` */
  int32_t allow_cross_references; /**< `allow_cross_references` */
  int32_t load_time;              /**< inside a `load_addr` group */
  int32_t paged;                  /**< `page` */
  int32_t page_size;              /**< of the space, or of a group, in MAUs; 0 if none is set */
  int32_t priority;               /**< 1 if none is set */
  int32_t direction;         /**< of the layout: enum tdm_locate_direction, or -1 for the space's */
  int32_t overlay_depth;     /**< groups passed since the nearest overlay group */
  tdm_expression *alignment; /**< of the innermost scope that sets one; null if none does */
  tdm_expression *page_number;     /**< `page = ` */
  tdm_attributes *attributes;      /**< null if no scope sets them */
  tdm_fillspec *fill;              /**< null if no scope sets one */
  tdm_group_location *location;    /**< the address or ranges in force; null if none are */
  const char *output_section_name; /**< `create_section`; null if none is set */
  const char *group_name;          /**< of the innermost group with a name; null without one */
} tdm_inspect_statement_env;

/** All of an environment but its page ranges. @return 1, or 0 after a failure */
TDM_API int tdm_inspect_get_statement_env(const tdm_statement_env *env,
                                          tdm_inspect_statement_env *out);

/** The ranges of each page that may be used. @return a new array of `tdm_range *`, which are valid
 *  as long as the environment is; empty if none are set. */
TDM_API tdm_arr *tdm_inspect_statement_env_page_ranges(const tdm_statement_env *env);

/* ============================================================================================== */
/* Vector tables                                                                                  */
/* ============================================================================================== */

/** A vector table, beside its name. */
typedef struct tdm_inspect_vector_table {
  tdm_expression *size;             /**< the number of vectors */
  tdm_expression *vector_size;      /**< of one vector, in MAUs of the space */
  tdm_expression *run_address;      /**< in MAUs of the space, whatever it was written in */
  const char *id_symbol_prefix;     /**< null if not given */
  const char *template_name;        /**< section that each vector is made from */
  const char *template_symbol_name; /**< symbol in it that the target takes the place of */
  const char *vector_name_prefix;   /**< null if not given */
  tdm_vector_value *default_value;  /**< of a vector without a value; null if not given */
  int32_t default_inline;           /**< 0 with `no_inline` */
  int32_t copy;                     /**< 1 with `copy` */
} tdm_inspect_vector_table;

/** The rest of a vector table but its vectors. @return 1, or 0 after a failure */
TDM_API int tdm_inspect_get_vector_table(const tdm_vector_table *table,
                                         tdm_inspect_vector_table *out);

/** The vectors that a table defines one by one. @return a new array of `tdm_vector *`. */
TDM_API tdm_arr *tdm_inspect_vector_table_vectors(const tdm_vector_table *table);

/** A run of numbers of vectors. */
typedef struct tdm_inspect_id_run {
  int32_t low;  /**< first number */
  int32_t high; /**< last number, included */
} tdm_inspect_id_run;

/** The numbers that a definition of a vector serves, as a short text can name very many. @return
 *  a new array of tdm_inspect_id_run, ascending, without overlap. */
TDM_API tdm_arr *tdm_inspect_vector_id_runs(const tdm_vector *vector);

/** The value of a vector. @return null if none is given. */
TDM_API tdm_vector_value *tdm_inspect_vector_value(const tdm_vector *vector);

/** 1 if the symbol of the vector need not be there. */
TDM_API int tdm_inspect_vector_is_optional(const tdm_vector *vector);

/** What stands in a vector, see enum tdm_vector_value_kind. */
TDM_API int tdm_inspect_vector_value_kind(const tdm_vector_value *value);

/** The symbol of a value. @return null if it is of another kind. */
TDM_API const char *tdm_inspect_vector_value_symbol(const tdm_vector_value *value);

/** The numbers of a value. @return a new array of 64-bit numbers by value (element_size 8); empty
 *  if it is of another kind. */
TDM_API tdm_arr *tdm_inspect_vector_value_numbers(const tdm_vector_value *value);

/** The offset of a loop. @return null if none is given, and if the value is of another kind. */
TDM_API tdm_expression *tdm_inspect_vector_value_loop_offset(const tdm_vector_value *value);

#ifdef __cplusplus
}
#endif

#endif
