/*
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

/* An expression as the model keeps it: not evaluated, since it may ask for what only a caller has.
 * The same class for clients in C++, where it has to be named as what it is. */
#ifdef __cplusplus
typedef class TDMExpression tdm_expression;
#else
typedef struct TDMExpression tdm_expression;
#endif

typedef struct TDMMapping tdm_mapping;
typedef struct TDMBankDef tdm_bank_def;
typedef struct TDMCopySubTable tdm_copy_sub_table;
typedef struct TDMInputModification tdm_input_modification;
typedef struct TDMVector tdm_vector;
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
  TDM_STATEMENT_ASSIGNMENT = 1,
  TDM_STATEMENT_BLOCK,
  TDM_STATEMENT_IF,
  TDM_STATEMENT_CREATE_SECTION, /**< `section` */
  TDM_STATEMENT_GROUP,
  TDM_STATEMENT_HEAP,
  TDM_STATEMENT_MEMORY_COPY, /**< `memcopy` */
  TDM_STATEMENT_RESERVED,
  TDM_STATEMENT_SELECTION, /**< `select` */
  TDM_STATEMENT_STACK,
  TDM_STATEMENT_STRUCT,
  TDM_STATEMENT_TABLE /**< `copytable` */
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
  TDM_OBJECT_BLOCK,
  TDM_OBJECT_IF_STATEMENT,
  TDM_OBJECT_CREATE_SECTION_STATEMENT,
  TDM_OBJECT_GROUP,
  TDM_OBJECT_HEAP_STATEMENT,
  TDM_OBJECT_MEMORY_COPY_STATEMENT,
  TDM_OBJECT_RESERVED_STATEMENT,
  TDM_OBJECT_SELECTION_STATEMENT,
  TDM_OBJECT_STACK_STATEMENT,
  TDM_OBJECT_STRUCT_STATEMENT,
  TDM_OBJECT_TABLE_STATEMENT
};

#ifdef __cplusplus
}
#endif

#endif
