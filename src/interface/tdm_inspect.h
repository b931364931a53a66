/**
 * @file
 * Readers beside <tdm_c/tdm.h>, for tools that show what the library found. They are versioned on
 * their own: what stands here may grow with every delivery, and tdm.h stays what it is. The
 * conventions of tdm.h hold.
 *
 *  - <tdm_c/tdm_inspect_model.h>: buses, mappings, what tdm.h doesn't tell of memories, cores and
 *    spaces, what spaces define, and where each part of each object was written.
 *  - <tdm_c/tdm_inspect_layout.h>: layouts as a tree of statements, groups, the rules in force at a
 *    statement, vector tables.
 *  - <tdm_c/tdm_inspect_source.h>: the files that were read and their chains of `#include`; limits;
 *    the tokens of the preprocessor.
 *  - <tdm_c/tdm_inspect_overlap.h>: descriptions that are refused because memories lie over each
 *    other or mappings of a space overlap, for reading.
 *  - <tdm_c/tdm_inspect_route.h>: translation over one mapping and from any object, and routes hop
 *    by hop.
 *  - <tdm_c/tdm_inspect_expression.h>: the text and the value of an expression, of the model or of
 *    the caller.
 *  - Below: failures, and messages of the preprocessor.
 */
#ifndef TDM_C_TDM_INSPECT_H
#define TDM_C_TDM_INSPECT_H

#include <stdint.h>

#include <tdm_c/tdm_inspect_expression.h>
#include <tdm_c/tdm_inspect_layout.h>
#include <tdm_c/tdm_inspect_model.h>
#include <tdm_c/tdm_inspect_overlap.h>
#include <tdm_c/tdm_inspect_route.h>
#include <tdm_c/tdm_inspect_source.h>
#include <tdm_c/tdm_inspect_types.h>
#include <tdm_c/tdm_types.h>

/** The first number of the version of this header. */
#define TDM_C_INSPECT_VERSION_MAJOR 1
/** The second number of the version of this header. */
#define TDM_C_INSPECT_VERSION_MINOR 0
/** The version of this header, to be compared in the preprocessor; 10000 is 1.0. */
#define TDM_C_INSPECT_VERSION                                                                      \
  (TDM_C_INSPECT_VERSION_MAJOR * 10000 + TDM_C_INSPECT_VERSION_MINOR * 100)

#ifdef __cplusplus
extern "C" {
#endif

/* ============================================================================================== */
/* Failures                                                                                       */
/* ============================================================================================== */

/**
 * How many calls have failed since the program began: rises by one with each failure.
 *
 * Tells a failure from an answer, and a fresh text from a stale one: ask before a call and
 * after it. Nothing sets it back. Works at any time.
 */
TDM_API int64_t tdm_inspect_failure_count(void);

/**
 * The text of the latest failure, "" before the first one; never null.
 *
 * The same as tdm_get_last_error(), but it also tells the failures that leave the last error text
 * as it was: those of address arithmetic in tdm_parse_file(), for instance of a mapping of more
 * than 64 data lines, and exhausted memory. Lives as the last error text does. Works at any time.
 */
TDM_API const char *tdm_inspect_failure_text(void);

/* ============================================================================================== */
/* Messages of the preprocessor                                                                   */
/* ============================================================================================== */

/** One message of the preprocessor, whatever its severity. */
typedef struct tdm_inspect_message {
  char letter;         /**< 'E' error, 'W' warning, 'I' note */
  int number;          /**< number in the message catalogue, 948 for instance */
  tdm_srcpos position; /**< where it was reported; all zero for no place */
  const char *text;    /**< from the pool of texts, without position or severity */
  int note;            /**< index of the note that belongs to it, in this same sequence; or -1 */
} tdm_inspect_message;

/** How many messages were reported since tdm_init(): errors, warnings and notes. */
TDM_API int tdm_inspect_message_count(void);

/**
 * One of the messages since tdm_init(), in the order in which they were reported, all severities in
 * one sequence.
 *
 * @param index  from 0 to tdm_inspect_message_count() - 1
 * @param out    receives the message; not null. Left as it is when the index is out of range.
 * @return 1 if there is such a message, else 0
 */
TDM_API int tdm_inspect_get_message(int index, tdm_inspect_message *out);

/** One kind of message: a row of the catalogue. All its texts are constants of the library. */
typedef struct tdm_inspect_message_kind {
  char letter;         /**< 'E' error, 'W' warning, 'I' note, 'S' a fault of the library itself */
  int number;          /**< 948 for instance; no two kinds share one */
  const char *format;  /**< the text, with %s, %c or %d where a message fills something in */
  const char *meaning; /**< what it means, in a few sentences; null for a kind without words */
} tdm_inspect_message_kind;

/**
 * One of the kinds of messages that the preprocessor knows, in ascending order of their numbers.
 * Works at any time.
 *
 * @param index  from 0 on
 * @param out    receives the kind; not null. Left as it is when the index is out of range.
 * @return 1 if there is such a kind, else 0
 */
TDM_API int tdm_inspect_get_message_kind(int index, tdm_inspect_message_kind *out);

#ifdef __cplusplus
}
#endif

#endif
