/**
 * @file
 * Exprlib: typed expression trees that are folded in place. Plain C99, usable from C++ as it is,
 * and dependent on nothing else.
 *
 * 1. A tree is built of nodes that belong to one context: constants, variables, operators. Each
 *    node counts its references. Whoever makes a node owns one reference and gives it back with
 *    exprlib_release(); an operator takes references of its own to its operands.
 * 2. exprlib_eval() folds: a node whose operands are constants becomes a constant, in place. Where
 *    operands are still open (a variable without a value), arithmetic and comparisons stay trees,
 *    and are folded by a later call.
 * 3. A function that can fail returns 0 for success and 1 for failure, and a failure leaves its
 *    code in the context. An outermost exprlib_eval() starts with the code 0; some codes are also
 *    left by a success (EXPRLIB_FRACT_SATURATION, EXPRLIB_OVERFLOW of a shift count).
 * 4. Nothing is locked: one thread at a time, over all contexts, since they share the pools that
 *    nodes come from; and one evaluation per context. The functions that a caller supplies may
 *    call back into the library, but must not throw.
 * 5. The depth of a tree is limited by memory alone: no function recurses along it.
 * 6. Contexts, nodes and out parameters are not null, unless a function says otherwise. Nodes of
 *    different contexts don't mix: EXPRLIB_INTERNAL_ERROR.
 */
#ifndef TDM_C_EXPRLIB_H
#define TDM_C_EXPRLIB_H

#include <stddef.h>
#include <stdint.h>

/** Marks a function that the shared library exports. */
#if defined(__GNUC__)
#define EXPRLIB_API __attribute__((visibility("default")))
#else
#define EXPRLIB_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** What kind of value a node has. */
typedef enum ExprlibValueType {
  EXPRLIB_UNKNOWN = 0,
  EXPRLIB_VOID = 1,
  EXPRLIB_INT = 2,          /**< value size bytes, two's complement, least significant byte first */
  EXPRLIB_UNSIGNED_INT = 3, /**< value size bytes, least significant byte first */
  EXPRLIB_DOUBLE = 4,
  /** width / 8 bytes, most significant first; the value is the signed sum of
   *  byte[i] / (128 * 256^i), so that it lies from -1.0 up to just under +1.0 */
  EXPRLIB_FRACT = 5,
  EXPRLIB_STRING = 6
} ExprlibValueType;

/** Operator codes. Codes from EXPRLIB_FIRST_USER_OPERATOR up are the caller's own. */
enum ExprlibOperator {
  EXPRLIB_CONSTANT = 0,
  EXPRLIB_VARIABLE = 1,
  EXPRLIB_TRUE = 2,
  EXPRLIB_FALSE = 3,
  EXPRLIB_ABS = 4,
  EXPRLIB_ADD = 5,
  EXPRLIB_AND = 6,
  EXPRLIB_COMPLEMENT = 7,
  EXPRLIB_DIVIDE = 8,
  EXPRLIB_LOGICAL_AND = 9,
  EXPRLIB_LOGICAL_OR = 10,
  EXPRLIB_MAX = 11,
  EXPRLIB_REMAINDER = 12,
  EXPRLIB_MIN = 13,
  EXPRLIB_MULTIPLY = 14,
  EXPRLIB_NEGATE = 15,
  EXPRLIB_NOT = 16,
  EXPRLIB_OR = 17,
  EXPRLIB_SHIFT_LEFT = 18,
  EXPRLIB_SHIFT_RIGHT_LOGICAL = 19,
  EXPRLIB_SHIFT_RIGHT_ARITHMETIC = 20,
  EXPRLIB_SUBTRACT = 21,
  EXPRLIB_XOR = 22,
  EXPRLIB_EQUAL = 23,
  EXPRLIB_NOT_EQUAL = 24,
  EXPRLIB_LESS_EQUAL = 25,
  EXPRLIB_GREATER_EQUAL = 26,
  EXPRLIB_GREATER = 27,
  EXPRLIB_LESS = 28,
  EXPRLIB_CONDITIONAL = 29, /**< condition, then-value, else-value */
  EXPRLIB_NOP = 30,
  EXPRLIB_CAST = 31,
  EXPRLIB_RELOCATION = 32,
  EXPRLIB_INTERNAL = 33,
  EXPRLIB_GUARD = 34, /**< condition, value, error number: the value if the condition is 0 */
  EXPRLIB_LAST_NAMED = 51,
  EXPRLIB_FIRST_USER_OPERATOR = 256
};

/** Error codes; exprlib_error_text() has the words. */
enum ExprlibError {
  EXPRLIB_NO_ERROR = 0,
  EXPRLIB_INTERNAL_ERROR = 1,
  EXPRLIB_OVERFLOW = 2,
  EXPRLIB_TOO_BIG = 3,
  EXPRLIB_OUT_OF_MEMORY = 4,
  EXPRLIB_FREE = 5,
  EXPRLIB_UNKNOWN_OPERAND = 6,
  EXPRLIB_UNKNOWN_TYPE = 7,
  EXPRLIB_INCOMPATIBLE_TYPES = 8,
  EXPRLIB_NO_VALUE = 9,
  EXPRLIB_DIVIDE_BY_ZERO = 10,
  EXPRLIB_CANNOT_CONVERT = 11,
  EXPRLIB_DOMAIN_ERROR = 12,
  EXPRLIB_FRACT_SATURATION = 13,
  EXPRLIB_RELOCATION_ERROR = 14,
  EXPRLIB_EVALUATION_ERROR = 15,
  EXPRLIB_NOT_SUPPORTED = 16
};

typedef struct ExprlibContext ExprlibContext;
typedef struct ExprlibNode ExprlibNode;

/** An operator of the caller: it evaluates its operands itself (exprlib_child(), exprlib_eval()),
 *  writes the result into the node (exprlib_become()) and returns 0, or sets the context's code
 *  and returns 1. */
typedef struct ExprlibUserOperator {
  intptr_t code; /**< EXPRLIB_FIRST_USER_OPERATOR or above */
  /** What evaluates a node of that operator. */
  int (*function)(ExprlibNode *node, void *closure);
  void *closure; /**< handed to the function */
} ExprlibUserOperator;

/** A pooled string of a context. */
typedef struct ExprlibString {
  struct ExprlibString *next;     /**< in the context's list; null at its end */
  struct ExprlibString *previous; /**< null at the head */
  char *characters; /**< owned, NUL terminated; null for a new element, which counts as empty */
  size_t length;    /**< of the characters, without the NUL */
} ExprlibString;

/** The owner of a node family. Made by exprlib_make_context(); a caller reads all fields and sets
 *  the error code, the user operators, the relocation evaluator and the error hook. */
struct ExprlibContext {
  int32_t error;                             /**< the code of the last error */
  uint32_t value_size;                       /**< bytes of an integer value */
  uint32_t payload_size;                     /**< bytes of a node behind its header */
  int32_t live_nodes;                        /**< nodes that haven't been ended */
  uint32_t user_operator_count;              /**< rows of user_operators */
  const ExprlibUserOperator *user_operators; /**< the caller's */
  /** Gives the child of a relocation node its value; returns 0 on success. May be null. */
  int (*relocation_evaluator)(void *argument, ExprlibNode *child);
  /** Told of the error of a guarded value. May be null. */
  void (*error_hook)(uint32_t number, ExprlibNode *node);
  ExprlibString *strings; /**< head of the list of all strings */
  uint8_t *scratch;       /**< the accumulators of integer operators, value_size bytes each */
  uint32_t running;       /**< evaluations that are under way, one inside the other */
};

/** An operand of an operator. */
typedef struct ExprlibCell {
  struct ExprlibCell *next; /**< the next operand; null behind the last one */
  ExprlibNode *node;        /**< the operand; the operator holds a reference */
} ExprlibCell;

/** A row of the table that a variable's index selects. */
typedef struct ExprlibSymbolRow {
  ExprlibNode *value; /**< null while the variable has none; the table's owner holds a reference */
  void *second;       /**< the owner's; not looked at */
  void *third;        /**< the owner's; not looked at */
} ExprlibSymbolRow;

/** The owner of the values of variables. */
typedef struct ExprlibSymbolTable {
  ExprlibSymbolRow *rows; /**< the owner's */
  uint32_t count;         /**< of rows */
} ExprlibSymbolTable;

/** The header of a node; the payload stands behind it. Which member of the payload counts is told
 *  by the operator code, and by the type for a constant. */
struct ExprlibNode {
  ExprlibContext *context; /**< that it belongs to */
  ExprlibNode *link;       /**< of the running evaluation, print or release */
  int32_t op;              /**< one of ExprlibOperator, or the caller's own */
  ExprlibValueType type;   /**< of an operator: the type of its first operand when it was made */
  uint16_t width;          /**< in bits */
  int32_t relocatable;     /**< 0 or 1 */
  int32_t references;      /**< who holds it */
  uint32_t step;           /**< of the running evaluation or print; 0 outside */
};

/** What stands behind the header of a node. */
typedef union ExprlibPayload {
  uint8_t bytes[8];      /**< as many as the type says: the payload is longer than this type */
  double number;         /**< of a constant of type "double" */
  ExprlibString *string; /**< of a constant of type "string" */
  struct {
    const ExprlibSymbolTable *owner; /**< not owned; may be null */
    uint32_t index;                  /**< of the row */
  } variable;                        /**< of a variable: where its value is */
  ExprlibNode *cast;                 /**< of a cast: what is cast */
  struct {
    void *argument;      /**< the evaluator's */
    ExprlibNode *child;  /**< what is relocated */
  } relocation;          /**< of a relocation */
  ExprlibCell *operands; /**< first operand first */
} ExprlibPayload;

/* ---- Contexts ---- */

/**
 * Makes a context.
 *
 * @param context      set to the context, or to null
 * @param value_size   bytes of an integer value, 1 to 8191
 * @param payload_size bytes of a node's payload; raised to what the library itself needs, so that
 *                     0 is the smallest. A fract may have as many bytes.
 * @return 0, or 1 without memory or with a size out of range
 */
EXPRLIB_API int exprlib_make_context(ExprlibContext **context, uint32_t value_size,
                                     uint32_t payload_size);

/** Ends a context with its strings. All its nodes must have been released. Null is ignored. */
EXPRLIB_API void exprlib_end_context(ExprlibContext *context);

/** The context's error code, one of ExprlibError. Reading it changes nothing. */
EXPRLIB_API int32_t exprlib_error(const ExprlibContext *context);

/** The words for an error code, "unknown error" for a number that is none. A constant text, never
 *  null. */
EXPRLIB_API const char *exprlib_error_text(int32_t code);

/* ---- Building trees. All: 0 and *node set to a new node with one reference, or 1 and the code.
 * ---- */

/** A zero-filled node, which is a constant of unknown type. Fails with EXPRLIB_OUT_OF_MEMORY, as
 *  all that follow can. */
EXPRLIB_API int exprlib_alloc_node(ExprlibContext *context, ExprlibNode **node);

/**
 * An operator node, of the type of its first operand.
 *
 * @param context of the node and of all operands
 * @param node  set to the node. On entry null, or a node of the caller: if that is an operand too,
 *              the caller's reference passes to the new node, else it stays with the caller. Any
 *              other operand gains a reference.
 * @param op    an operator code
 * @param count number of the operands that follow, each an ExprlibNode *, none null
 */
EXPRLIB_API int exprlib_make_operator(ExprlibContext *context, ExprlibNode **node, int32_t op,
                                      uint32_t count, ...);

/** The same with the operands in an array. */
EXPRLIB_API int exprlib_make_operator_of(ExprlibContext *context, ExprlibNode **node, int32_t op,
                                         uint32_t count, ExprlibNode *const *operands);

/** A constant of type "int", width 32. */
EXPRLIB_API int exprlib_make_int32(ExprlibContext *context, ExprlibNode **node, int32_t value);

/** A constant of type "int", width 64; a value size below 8 keeps the low bytes. */
EXPRLIB_API int exprlib_make_int64(ExprlibContext *context, ExprlibNode **node, int64_t value);

/**
 * An integer constant of any size.
 *
 * @param context of the node
 * @param node    set to the node
 * @param type    one of the types 0 to 3; any other fails with EXPRLIB_UNKNOWN_TYPE
 * @param bytes   least significant first. Fewer than the value size are extended by the sign for
 *                "int" and by 0 for the others; of more, the low ones count. Null is none.
 * @param count   of the bytes
 * @param width   in bits
 */
EXPRLIB_API int exprlib_make_integer(ExprlibContext *context, ExprlibNode **node,
                                     ExprlibValueType type, const uint8_t *bytes, size_t count,
                                     uint16_t width);

/** A constant of type "double", width 64. */
EXPRLIB_API int exprlib_make_double(ExprlibContext *context, ExprlibNode **node, double value);

/** A constant of type "fract" of count bytes, most significant first; width 8 * count. Fails with
 *  EXPRLIB_TOO_BIG if they don't fit the payload. */
EXPRLIB_API int exprlib_make_fract(ExprlibContext *context, ExprlibNode **node,
                                   const uint8_t *bytes, size_t count);

/** An element for a string at the head of the context's list, empty as yet; null without memory,
 *  with the code EXPRLIB_OUT_OF_MEMORY. It belongs to the context; a string constant that refers to
 *  it takes it along when it is released. */
EXPRLIB_API ExprlibString *exprlib_make_string(ExprlibContext *context);

/** Gives the element a copy of the characters in the place of those that it has; null is allowed
 *  for no characters. 0, or 1 and EXPRLIB_OUT_OF_MEMORY: the element then stays as it was. */
EXPRLIB_API int exprlib_set_string(ExprlibContext *context, ExprlibString *string,
                                   const char *characters, size_t length);

/** A constant of type "string" with an element of its own. */
EXPRLIB_API int exprlib_make_string_constant(ExprlibContext *context, ExprlibNode **node,
                                             const char *characters, size_t length);

/** A reference to row `index` of the owner's table, which outlives the node. Where there is no such
 *  row, or a null owner, the variable never has a value. The type is what operators above it are
 *  checked against; the value brings its own. */
EXPRLIB_API int exprlib_make_variable(ExprlibContext *context, ExprlibNode **node,
                                      ExprlibValueType type, const ExprlibSymbolTable *owner,
                                      uint32_t index);

/** A cast of the child, which gains a reference, to the type. */
EXPRLIB_API int exprlib_make_cast(ExprlibContext *context, ExprlibNode **node,
                                  ExprlibValueType type, ExprlibNode *child);

/** A relocation function of the child, which gains a reference. The argument is the evaluator's. */
EXPRLIB_API int exprlib_make_relocation(ExprlibContext *context, ExprlibNode **node, void *argument,
                                        ExprlibNode *child);

/** One more reference to the node. */
EXPRLIB_API void exprlib_retain(ExprlibNode *node);

/** One reference less; the last one ends the node and gives back its references. Null is ignored.
 */
EXPRLIB_API void exprlib_release(ExprlibNode *node);

/* ---- Evaluating and reading ---- */

/**
 * Folds the node as far as its operands allow.
 *
 * @return 0 if it is a constant now, or an operator that waits for open operands; 1 and the code
 *         on failure. What was folded before a failure stays folded.
 */
EXPRLIB_API int exprlib_eval(ExprlibNode *node);

/** Operand number n of an operator, first is 0; null behind the last one, and for constants and
 *  variables. The reference stays the operator's. */
EXPRLIB_API ExprlibNode *exprlib_child(const ExprlibNode *node, uint32_t n);

/** Gives the node the value of the source, which stays as it is; the operands that the node had are
 *  released. If the source is no constant, the node becomes a second one of its kind with the same
 *  operands. 0, or 1 and EXPRLIB_OUT_OF_MEMORY or EXPRLIB_TOO_BIG: the node then stays as it was.
 */
EXPRLIB_API int exprlib_become(ExprlibNode *node, ExprlibNode *source);

/** The payload behind the header; the node's, for as long as it is what it is. */
static inline ExprlibPayload *exprlib_payload(const ExprlibNode *node)
{
  return (ExprlibPayload *)(uintptr_t)(node + 1);
}

/** The bytes of an integer or fract constant. */
static inline uint8_t *exprlib_bytes(const ExprlibNode *node)
{
  return (uint8_t *)(uintptr_t)(node + 1);
}

/** The low 64 bits of an integer constant, an "int" extended by its sign, the others by 0. Of no
 * use for any other node. */
EXPRLIB_API int64_t exprlib_int64(const ExprlibNode *node);

/** 1 if the node is a constant below 0. */
EXPRLIB_API int exprlib_is_negative(const ExprlibNode *node);

/** 1 if the node is a constant with the value 0, or the empty string. */
EXPRLIB_API int exprlib_is_zero(const ExprlibNode *node);

/** The name of a type for display; an empty text where it has none. */
EXPRLIB_API const char *exprlib_type_name(ExprlibValueType type);
/** The name of an operator for display; an empty text where it has none. */
EXPRLIB_API const char *exprlib_operator_name(int32_t op);

/** Hands the tree as text to the function, piece by piece: `((1 + $0) << 2)`. A piece isn't NUL
 *  terminated, and is gone when the function returns. Changes nothing in the tree. */
EXPRLIB_API void exprlib_print(ExprlibNode *node,
                               void (*write)(const char *text, size_t length, void *closure),
                               void *closure);

#ifdef __cplusplus
}
#endif

#endif
