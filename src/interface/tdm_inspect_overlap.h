/**
 * @file
 * Descriptions whose memories lie over each other, or whose spaces have overlapping mappings: what
 * tdm_parse_file() refuses, for those who want to show it. Part of <tdm_c/tdm_inspect.h>.
 *
 * The conventions of tdm.h and of <tdm_c/tdm_inspect_model.h> hold.
 */
#ifndef TDM_C_TDM_INSPECT_OVERLAP_H
#define TDM_C_TDM_INSPECT_OVERLAP_H

#include <stdint.h>

#include <tdm_c/tdm_inspect_types.h>
#include <tdm_c/tdm_types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Reads files as tdm_parse_file() does, and gives the spec, too, when all is well but for these
 * checks: that the mappings of each space don't overlap, and the last ones, those over the whole
 * of it, that names are defined once only, and that no two memories lie over each other on a bus.
 *
 * @param files, include_dirs  as for tdm_parse_file()
 * @return a new spec, which the caller ends with tdm_spec_free(); null after any other failure,
 * with the last error text that tdm_parse_file() leaves, that of the first check that failed.
 *
 * A spec that didn't pass is for reading: every function answers, but nothing should be located by
 * it. tdm_inspect_spec_check_failure() tells whether it passed. That it didn't is no failure of
 * this call: the last error text stays.
 */
TDM_API tdm_spec *tdm_inspect_parse_file(const tdm_arr *files, const tdm_arr *include_dirs);

/** The text with which tdm_parse_file() would have refused the spec. @return null if it passes all
 *  checks, as every spec of tdm_parse_file() does. */
TDM_API const char *tdm_inspect_spec_check_failure(const tdm_spec *spec);

/** Two mappings that take the same bits of a bus. */
typedef struct tdm_inspect_overlap {
  tdm_mapsource *source;       /**< the bus */
  tdm_memory *first;           /**< global memories come first, then those of the processors */
  tdm_memory *second;          /**< the later one in that order, or the same one */
  tdm_mapping *first_mapping;  /**< by which the first memory lies there */
  tdm_mapping *second_mapping; /**< the same of the second */
  tdm_interval range;          /**< what both take, in MAUs of the source; the mask has the data
                                    lines that they share */
  int64_t bits;                /**< bits that range and mask hold, at most 2^63 - 1 */
} tdm_inspect_overlap;

/**
 * All overlaps of memories on buses, one step back from each memory, but for those that would take
 * a pattern of more than 64 bits to compare.
 * @return a new array of tdm_inspect_overlap by value, in the order of the second mapping and then
 *         of the first; empty if there are none. At most 10,000 of them are told.
 */
TDM_API tdm_arr *tdm_inspect_spec_overlaps(const tdm_spec *spec);

/** Two mappings that take the same bits of the space that they leave. */
typedef struct tdm_inspect_mapping_overlap {
  tdm_space *space;    /**< one that the description defines */
  tdm_mapping *first;  /**< in the order of the definition of the space */
  tdm_mapping *second; /**< the later one in that order */
  tdm_interval range;  /**< what both take, in MAUs of the space; the mask has the data lines that
                            they share */
  int64_t bits;        /**< bits that range and mask hold, at most 2^63 - 1 */
} tdm_inspect_mapping_overlap;

/**
 * All overlaps of mappings of one space, in all spaces of all cores. Mappings on separate data
 * lines or in separate banks don't overlap.
 *
 * @return a new array of tdm_inspect_mapping_overlap by value, space by space in the order of the
 *         processors, their cores and their spaces; of each in the order of the second mapping and
 *         then of the first; empty if there are none. At most 10,000 of them are told.
 */
TDM_API tdm_arr *tdm_inspect_spec_mapping_overlaps(const tdm_spec *spec);

#ifdef __cplusplus
}
#endif

#endif
