/**
 * @file
 * Expressions: those of the model and those of a caller, as text, and their values with all the
 * data of a located program. Part of <tdm_c/tdm_inspect.h>.
 *
 * The conventions of tdm.h and of <tdm_c/tdm_inspect_model.h> hold. Values are signed numbers of
 * 64 bits; arithmetic wraps.
 */
#ifndef TDM_C_TDM_INSPECT_EXPRESSION_H
#define TDM_C_TDM_INSPECT_EXPRESSION_H

#include <stdint.h>

#include <tdm_c/tdm_inspect_types.h>
#include <tdm_c/tdm_types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** What a value counts. */
enum tdm_quantity_kind {
  TDM_QUANTITY_NUMBER,  /**< nothing, or nothing that the text tells */
  TDM_QUANTITY_ADDRESS, /**< an address of the space */
  TDM_QUANTITY_SIZE     /**< a size, or the distance of two addresses */
};

/** What the value of an expression counts, as far as its `addressof` and `sizeof` tell. */
typedef struct tdm_inspect_quantity {
  int32_t kind;     /**< see enum tdm_quantity_kind */
  int32_t mau_size; /**< bits of the units of an address or a size; 0 for a number */
} tdm_inspect_quantity;

/**
 * Reads an expression of the caller's, as it could stand in a section layout of a space.
 *
 * Its names are those that a layout for the space in the processor's own derivative would have: the
 * parameters of that derivative with the arguments that the processor gave, memories of the
 * processor, and the global ones too. `addressof(mem:...)` is an address of the space, -1 doesn't
 * occur: a memory that the space doesn't reach is a failure. There are no macros and no directives;
 * comments and line ends are white space.
 *
 * @param spec      that the space belongs to; not null
 * @param space     where the expression is meant; not null
 * @param text      all of it has to be one expression; not null. Not kept.
 * @param quantity  receives what the value counts; may be null. Left as it is after a failure.
 * @return a new expression, which the caller ends with tdm_inspect_expression_delete(); null after
 *         a failure. It doesn't refer to the spec: what its names mean is found now. It may be used
 *         until tdm_cleanup().
 *
 * A failure gives places in a file of the name "<expression>": line and column, in bytes, of the
 * text. So does one of the evaluation.
 */
TDM_API tdm_expression *tdm_inspect_parse_expression(const tdm_spec *spec, const tdm_space *space,
                                                     const char *text,
                                                     tdm_inspect_quantity *quantity);

/** Ends an expression of tdm_inspect_parse_expression(), and no other.
 *  @param expression  null does nothing */
TDM_API void tdm_inspect_expression_delete(tdm_expression *expression);

/**
 * An expression as source text, with the parentheses that it needs and no others: read again, it is
 * the same expression. Numbers are decimal. What the model keeps has no names of parameters and
 * memories any more: there stands what they meant.
 *
 * @return a text of the pool; null for null, and after a failure
 */
TDM_API const char *tdm_inspect_expression_text(const tdm_expression *expression);

/**
 * What an expression can ask of a program that is located, or about to be. A null entry has no
 * answer. A name is valid during the call. Everything is asked in the course of the evaluation, and
 * may be asked more than once.
 *
 * An entry with a receiver `value` returns 1 after it has stored the answer there, and 0 if it has
 * none. Addresses and sizes are in MAUs of the space that the expression belongs to.
 */
typedef struct tdm_inspect_environment {
  /** Whether there is a section of that name, for `exists`; any number but 0 is yes. */
  int (*section_exists)(const char *name, void *user);
  /** Whether there is a definition of that symbol, for `defined`; any number but 0 is yes. */
  int (*symbol_defined)(const char *name, void *user);
  /** The value of a symbol. Without one the evaluation fails. */
  int (*symbol_value)(const char *name, int64_t *value, void *user);
  /** The address of a section, for `addressof(sect:...)`, which is -1 without an answer. */
  int (*section_address)(const char *name, int64_t *value, void *user);
  /** The size of a section, for `sizeof(sect:...)`, which is -1 without an answer. */
  int (*section_size)(const char *name, int64_t *value, void *user);
  /** The first address of a group, for `addressof(group:...)` and `sizeof(group:...)`, which are -1
   *  without an answer. */
  int (*group_start)(const char *name, int64_t *value, void *user);
  /** The first address behind a group, for `sizeof(group:...)`, which is -1 without an answer. */
  int (*group_end)(const char *name, int64_t *value, void *user);
  /** What lies at the addresses from `start` up to `end`, one MAU in each element of `units`, for
   *  `checksum`. `end` is above `start`; there is room for all of them. Without an answer, when
   *  not all of it is filled, the evaluation fails. */
  int (*located_data)(int64_t start, int64_t end, uint32_t *units, void *user);
  /** 1 if sections, symbols, groups and data may be asked for. With 0 the evaluation of what asks
   *  for them fails, as it does in places of a description where they can't be known yet; `exists`
   *  works. */
  int32_t layout_data_available;
  /** The order of the bytes of located data: one of enum tdm_endianness. */
  int32_t data_endianness;
  /** Bits of one MAU of located data: 1, 2, 4, 8, 16 or 32. */
  int32_t data_mau_size;
} tdm_inspect_environment;

/**
 * The value of an expression.
 *
 * @param expression   not null
 * @param environment  what it may ask; null: an expression that asks for anything fails. Not copied
 *                     and not kept.
 * @param user         handed to each entry of it
 * @param value        receives the value; not null. Left as it is after a failure.
 * @return 1, or 0 after a failure: a division by zero, a symbol without a value, data that is
 *         needed and isn't there
 *
 * It is evaluated anew each time, and what the library knows of the expression stays as it is.
 * `defined` counts 0 in arithmetic: ask tdm_inspect_expression_refers_to_defined().
 */
TDM_API int tdm_inspect_expression_evaluate(const tdm_expression *expression,
                                            const tdm_inspect_environment *environment, void *user,
                                            int64_t *value);

/**
 * Whether an expression names a symbol, as a value or in `defined`, that the entry
 * symbol_defined() confirms.
 *
 * @param expression   not null
 * @param environment  null or without that entry: no symbol is confirmed
 * @param user         handed to that entry
 * @return 1 or 0; 0 after a failure
 */
TDM_API int tdm_inspect_expression_refers_to_defined(const tdm_expression *expression,
                                                     const tdm_inspect_environment *environment,
                                                     void *user);

/** From where to where an expression needs located data, in MAUs; the last one isn't part of it. */
typedef struct tdm_inspect_data_range {
  int64_t start; /**< first address */
  int64_t end;   /**< first address behind it */
} tdm_inspect_data_range;

/**
 * The data that the checksums of an expression are made of, in the order of the text; so that a
 * client can see what has to be located first. The bounds are evaluated with the environment.
 *
 * @return a new array of tdm_inspect_data_range by value; empty without checksums or after a
 *         failure. Parameters as for the evaluation.
 */
TDM_API tdm_arr *tdm_inspect_expression_data_ranges(const tdm_expression *expression,
                                                    const tdm_inspect_environment *environment,
                                                    void *user);

#ifdef __cplusplus
}
#endif

#endif
