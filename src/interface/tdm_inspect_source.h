/**
 * @file
 * The text that a description is made of: the files that were read, from where each was included,
 * and the tokens that the preprocessor makes of them. Part of <tdm_c/tdm_inspect.h>.
 *
 * The conventions of tdm.h and of <tdm_c/tdm_inspect_model.h> hold.
 */
#ifndef TDM_C_TDM_INSPECT_SOURCE_H
#define TDM_C_TDM_INSPECT_SOURCE_H

#include <stdint.h>

#include <tdm_c/tdm_types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ============================================================================================== */
/* Files                                                                                          */
/* ============================================================================================== */

/** One opening of a file. */
typedef struct tdm_inspect_source_file {
  const char *name;    /**< the name that it was opened by, with the directory where it was found */
  int32_t includer;    /**< index of the file whose `#include` opened it, in the same list; -1 for a
                            file that the call was given */
  tdm_srcpos included; /**< where that `#include` stands; all zero without one. No pragmas. */
} tdm_inspect_source_file;

/**
 * The files that were opened for the latest parse or token stream since tdm_init(), whether it
 * succeeded or failed, or still goes on.
 *
 * @return a new array of tdm_inspect_source_file: first the files that the call was given, in
 *         their order, then the others in the order in which they were opened. A file that was
 *         opened several times stands there several times.
 */
TDM_API tdm_arr *tdm_inspect_source_files(void);

/**
 * Through which `#include` directives the file of a position came to be read, in the latest parse
 * or token stream since tdm_init().
 *
 * @param position  a place as failures, messages and objects give it; its file and line count.
 *                  Not null, the file may be.
 * @return a new array of tdm_srcpos, without pragmas: the place of the `#include` that opened the
 *         file, then of the one that opened that file, and so on up to a file that the call was
 *         given. Empty for such a file, and for one that wasn't read.
 *
 * A position doesn't say in which of several readings of its file it was met. It is taken for the
 * latest one that didn't skip the line, by an include guard for instance.
 */
TDM_API tdm_arr *tdm_inspect_include_chain(const tdm_srcpos *position);

/**
 * What a parse or a token stream is reading at this moment. It only looks, and takes no memory: a
 * signal handler, a handler of exit() or one for exhausted memory may ask, in the thread that
 * reads, to tell where time or memory came to an end.
 *
 * @param out  receives the name that the file was opened by, which is valid until tdm_cleanup(),
 *             and the line as the file counts it; 0 while the file is being opened. Column and
 *             pragmas are none. Not null. Left as it is without an answer.
 * @return 1, or 0 if no file is being read
 */
TDM_API int tdm_inspect_reading(tdm_srcpos *out);

/* ============================================================================================== */
/* Limits                                                                                         */
/* ============================================================================================== */

/** What tdm_limits_set() can limit. */
enum tdm_limit {
  /** How deep `#include` may nest: 1 allows it in the files that a call is given, and not in those
   *  that they include. An `#include` beyond it is error 956 of the preprocessor and is passed
   * over. Without a limit, files nest as deep as they can be opened. */
  TDM_LIMIT_INCLUDE_DEPTH = 1
};

/**
 * Sets a limit for the parses and token streams that begin from now on, until the next tdm_init().
 * A limit that is set before tdm_init() has no effect.
 *
 * @param limit  one of enum tdm_limit
 * @param value  1 or more; 0 for no limit, as it is after tdm_init()
 * @return 1, or 0 for a limit that there isn't or a value below 0: then nothing is changed
 */
TDM_API int tdm_limits_set(int limit, int64_t value);

/* ============================================================================================== */
/* Tokens                                                                                         */
/* ============================================================================================== */

/** The tokens of one input, from tdm_inspect_tokens_start(). */
typedef struct TDMTokenStream tdm_token_stream;

/** Numbers of tokens that aren't fixed characters. All others are operators and punctuation, see
 *  tdm_inspect_token_name(). */
enum tdm_token_number {
  TDM_TOKEN_END = 0,            /**< never handed out */
  TDM_TOKEN_ERROR = 1,          /**< characters that make no token */
  TDM_TOKEN_WIDE_STRING = 5,    /**< `L"..."` */
  TDM_TOKEN_WIDE_CHARACTER = 6, /**< `L'...'` */
  TDM_TOKEN_NAME = 7,           /**< a name, keywords of the language among them */
  TDM_TOKEN_INTEGER = 9,        /**< a whole number */
  TDM_TOKEN_FLOAT = 10,         /**< a number with a point or an exponent */
  TDM_TOKEN_STRING = 11,        /**< `"..."` */
  TDM_TOKEN_CHARACTER = 12,     /**< `'...'` */
  TDM_TOKEN_NEWLINE = 15,       /**< the end of a line */
  TDM_TOKEN_WHITE = 16,         /**< a run of white space without newlines */
  TDM_TOKEN_COMMENT = 17 /**< with all its characters, newlines too; a preprocessor that writes
                              text puts a blank there */
};

/** One token behind the preprocessor. */
typedef struct tdm_inspect_token {
  int32_t number;      /**< what it is: one of enum tdm_token_number, or an operator */
  const char *text;    /**< its characters, of the pool */
  tdm_srcpos position; /**< of its first character; what a macro gives stands where the macro is
                            used. No pragmas. */
} tdm_inspect_token;

/**
 * Begins to preprocess files as tdm_parse_file() does, without reading what they describe.
 *
 * @param files, include_dirs  as for tdm_parse_file(): the directories stay for later calls, too
 * @return a stream, which the caller ends with tdm_inspect_tokens_end(); null after a failure, when
 *         a file cannot be opened for instance
 *
 * There is one input at a time: another start, tdm_parse_file(), tdm_init() and tdm_cleanup() end a
 * stream that is still open.
 */
TDM_API tdm_token_stream *tdm_inspect_tokens_start(const tdm_arr *files,
                                                   const tdm_arr *include_dirs);

/**
 * The next token: white space, newlines and comments are tokens too, and the texts of all tokens,
 * one behind the other, are what the language reads. A directive leaves its newline alone, and so
 * does each line of a group that a condition leaves out, unless its file has been read before;
 * only `#pragma` is handed on as it stands. Positions tell where lines are missing.
 *
 * @param stream  of tdm_inspect_tokens_start(). One that has been ended is a failure, 0.
 * @param out     receives the token; not null. Left as it is at the end.
 * @return 1, or 0 at the end of the input
 *
 * What the preprocessor finds wrong on the way is among its messages, see tdm_get_errors().
 */
TDM_API int tdm_inspect_tokens_next(tdm_token_stream *stream, tdm_inspect_token *out);

/** Ends a stream, at its end or before. Null does nothing, nor does one that has been ended. */
TDM_API void tdm_inspect_tokens_end(tdm_token_stream *stream);

/**
 * What tokens of a number look like: the characters of an operator, or a word in angle brackets,
 * "<identifier>" for instance. Works at any time.
 *
 * @return a constant of the library; null for a number that there isn't
 */
TDM_API const char *tdm_inspect_token_name(int number);

#ifdef __cplusplus
}
#endif

#endif
