/**
 * @file
 * Handles and numbers that the headers of the tdm_inspect family share. The conventions of tdm.h
 * hold: a handle is the address of an object of the model and dies with its spec.
 */
#ifndef TDM_C_TDM_INSPECT_TYPES_H
#define TDM_C_TDM_INSPECT_TYPES_H

#include <stdint.h>

#include <tdm_c/tdm_types.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
/** An expression as the model keeps it: not evaluated, since it may ask for what only a caller has.
 *  The same class for clients in C++, where it has to be named as what it is. */
typedef class TDMExpression tdm_expression;
#else
/** An expression as the model keeps it: not evaluated, since it may ask for what only a caller has.
 */
typedef struct TDMExpression tdm_expression;
#endif

/** A `map`: one edge between spaces, buses and memories, see tdm_inspect_get_mapping(). */
typedef struct TDMMapping tdm_mapping;
/** What a space says with `bank`, see tdm_inspect_get_bank_def(). */
typedef struct TDMBankDef tdm_bank_def;
/** A `table` of a copy table, see tdm_inspect_copy_sub_table_symbol(). */
typedef struct TDMCopySubTable tdm_copy_sub_table;
/** What a setup says with `modify input`. */
typedef struct TDMInputModification tdm_input_modification;
/** A `vector` of a vector table, see tdm_inspect_vector_value(). */
typedef struct TDMVector tdm_vector;
/** What stands in a vector, see tdm_inspect_vector_value_kind(). */
typedef struct TDMVectorValue tdm_vector_value;

/** A statement of a layout, of any kind; tdm_inspect_statement_kind() tells which. */
typedef struct TDMStatement tdm_statement;

/** What tdm_inspect_space_kind() gives. */
enum tdm_space_kind {
  TDM_SPACE_DEFINED = 1, /**< by a description */
  TDM_SPACE_NON_ALLOC,   /**< the space that holds what isn't allocated */
  TDM_SPACE_CLONE        /**< stands for several spaces at once */
};

/** What tdm_inspect_statement_kind() gives. */
enum tdm_statement_kind {
  TDM_STATEMENT_ASSIGNMENT = 1, /**< `"symbol" = value;` or `:=` */
  TDM_STATEMENT_BLOCK,          /**< `{ ... }` */
  TDM_STATEMENT_IF,             /**< `if` */
  TDM_STATEMENT_CREATE_SECTION, /**< `section` */
  TDM_STATEMENT_GROUP,          /**< `group` */
  TDM_STATEMENT_HEAP,           /**< `heap` */
  TDM_STATEMENT_MEMORY_COPY,    /**< `memcopy` */
  TDM_STATEMENT_RESERVED,       /**< `reserved` */
  TDM_STATEMENT_SELECTION,      /**< `select` */
  TDM_STATEMENT_STACK,          /**< `stack` */
  TDM_STATEMENT_STRUCT,         /**< `struct` */
  TDM_STATEMENT_TABLE           /**< `copytable` */
};

/** What tdm_inspect_group_location_form() gives. */
enum tdm_group_location_form {
  TDM_LOCATION_ADDRESS = 1,    /**< an address in the space */
  TDM_LOCATION_MEMORY_ADDRESS, /**< an address in a memory */
  TDM_LOCATION_RANGES          /**< ranges, each in the space or in a memory */
};

/** The kind of a vector's value. */
enum tdm_vector_value_kind {
  TDM_VECTOR_SYMBOL = 1, /**< the address of a symbol */
  TDM_VECTOR_NUMBERS,    /**< numbers */
  TDM_VECTOR_LOOP        /**< a jump to itself, or by an offset */
};

/** Which handle tdm_inspect_position() is given. */
enum tdm_object_kind {
  TDM_OBJECT_PROCESSOR = 1,      /**< tdm_processor */
  TDM_OBJECT_CORE,               /**< tdm_core */
  TDM_OBJECT_BUS,                /**< tdm_bus */
  TDM_OBJECT_MEMORY,             /**< tdm_memory */
  TDM_OBJECT_SPACE,              /**< tdm_space */
  TDM_OBJECT_MAPPING,            /**< tdm_mapping */
  TDM_OBJECT_STACK_DEF,          /**< tdm_stack_def */
  TDM_OBJECT_HEAP_DEF,           /**< tdm_heap_def */
  TDM_OBJECT_COPY_TABLE,         /**< tdm_copy_table */
  TDM_OBJECT_DIRECT_INIT,        /**< tdm_direct_init */
  TDM_OBJECT_VECTOR_TABLE,       /**< tdm_vector_table */
  TDM_OBJECT_VECTOR,             /**< tdm_vector */
  TDM_OBJECT_VECTOR_VALUE,       /**< tdm_vector_value */
  TDM_OBJECT_START_ADDRESS,      /**< tdm_start_address */
  TDM_OBJECT_BANK_DEF,           /**< tdm_bank_def */
  TDM_OBJECT_INPUT_MODIFICATION, /**< tdm_input_modification */
  TDM_OBJECT_SECTION_LAYOUT,     /**< tdm_section_layout */
  TDM_OBJECT_GROUP_LOCATION,     /**< tdm_group_location */
  TDM_OBJECT_EXPRESSION,         /**< tdm_expression */
  TDM_OBJECT_STATEMENT,          /**< tdm_statement, of any kind */
  TDM_OBJECT_ASSIGNMENT,         /**< tdm_assignment, and so on: a statement by its own handle */
  TDM_OBJECT_BLOCK,              /**< tdm_block */
  TDM_OBJECT_IF_STATEMENT,       /**< tdm_if_statement */
  TDM_OBJECT_CREATE_SECTION_STATEMENT, /**< tdm_create_section_statement */
  TDM_OBJECT_GROUP,                    /**< tdm_group */
  TDM_OBJECT_HEAP_STATEMENT,           /**< tdm_heap_statement */
  TDM_OBJECT_MEMORY_COPY_STATEMENT,    /**< tdm_memory_copy_statement */
  TDM_OBJECT_RESERVED_STATEMENT,       /**< tdm_reserved_statement */
  TDM_OBJECT_SELECTION_STATEMENT,      /**< tdm_selection_statement */
  TDM_OBJECT_STACK_STATEMENT,          /**< tdm_stack_statement */
  TDM_OBJECT_STRUCT_STATEMENT,         /**< tdm_struct_statement */
  TDM_OBJECT_TABLE_STATEMENT           /**< tdm_table_statement */
};

#ifdef __cplusplus
}
#endif

#endif
