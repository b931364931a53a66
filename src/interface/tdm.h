/**
 * @file
 * tdm_c: reads target-description files, checks them and answers for them.
 *
 *     tdm_init(NULL);
 *     tdm_spec *spec = tdm_parse_file(&files, &include_dirs);
 *     if (spec == NULL) puts(tdm_get_last_error());
 *     ... ask ...
 *     tdm_spec_free(spec);
 *     tdm_cleanup();
 *
 * Plain C99, usable from C++ as it is. What holds for every function stands here, once; a function
 * below says only what is its own.
 *
 *  1. Handles. A `tdm_spec *` comes from tdm_parse_file() and goes with tdm_spec_free(). All other
 *     handles point into the model of one spec: they stay the spec's, die with it, and are never
 *     freed by the caller. A handle is used as it is, with no validation: null or a stale one is a
 *     fault of the caller, except where a function says that it takes null.
 *  2. Texts. Every `const char *` that is returned points into a pool of texts. It stays valid
 *     until tdm_cleanup(), past tdm_spec_free() too; equal texts have one address; the caller frees
 *     none. A text that can be absent is null then, never "" unless the function says so. Names
 * that are given are compared as a whole, case included, and the first match in the order of the
 * model counts; a null name matches nothing.
 *  3. Arrays. Every `tdm_arr *` that is returned is new and the caller's: give it back with
 *     tdm_arr_del(). What its elements point to stays the library's. With nothing to return it is
 *     empty (`count` 0); it is null only when there is no memory even for that. Arrays that are
 *     given are only read, during the call, and stay the caller's; their elements have pointer
 *     size. Of an array of texts `items` and `count` are read; null texts in it are left out.
 *  4. Numbers. A plain number is an `int`, a boolean is 1 or 0. Numbers of 64 bits are `int64_t`.
 *  5. Units. Addresses and sizes count in MAUs (minimal addressable units) of the object that they
 *     belong to, and the size of a MAU counts in bits. Every tdm_addressvalue carries the MAU that
 *     it counts in.
 *  6. Failures. Nothing is thrown over this interface. A call that fails gives null, 0 or an empty
 *     array, and tdm_get_last_error() says why. The last error text is written by a failure alone:
 *     nothing clears it, so look at it only after a call that failed. "There is none" (no such
 *     name, no route) is an answer and no failure. Every function that makes a text or an array can
 *     fail when memory runs out, and one that gives a text fails outside of tdm_init() and
 *     tdm_cleanup(); the functions below say what else can fail. <tdm_c/tdm_inspect.h> counts
 *     failures, so that a 0 that is an answer can be told from one that isn't.
 *  7. Messages of the preprocessor (a missing `#include` file, a macro redefined) are a channel of
 *     their own and end no parse: look at tdm_get_error_count() after a successful parse too.
 *  8. Time and threads. All state is process-wide and without locks, and even asking for a name
 *     writes to the pool: call from one thread at a time. Everything but tdm_provides(),
 *     tdm_requires(), tdm_get_last_error(), tdm_arr_del(), tdm_spec_free() and the two functions
 *     that begin and end the use of the library belongs between tdm_init() and tdm_cleanup().
 *  9. Callbacks. The caller's own pointer comes last and is only passed on; a null entry of a table
 *     is skipped; what an entry returns is ignored unless its description says otherwise. Nothing
 *     may be thrown out of one, and none may end the spec or the library.
 *  10. Ends of the process. When the preprocessor finds no memory, it writes a line to standard
 *     error and ends the process with exit code 2; a fault of the library itself ends it with 4.
 *
 * Further readers, outside this interface's promise of stability: <tdm_c/tdm_inspect.h>.
 */
#ifndef TDM_C_TDM_H
#define TDM_C_TDM_H

#include <stdint.h>

#include <tdm_c/tdm_types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ============================================================================================== */
/* Start and end                                                                                  */
/* ============================================================================================== */

/**
 * What this component is: "tdm_c", 4, 0 and the text of its revision.
 *
 * @param name      receives the name of the component
 * @param major     receives the first number of its version
 * @param minor     receives the second one
 * @param revision  receives the text of its revision
 *
 * Works at any time. Each pointer may be null. The texts are constants of the library, valid while
 * it is loaded.
 */
TDM_API void tdm_provides(const char **name, int *major, int *minor, const char **revision);

/**
 * The component that this one needs.
 *
 * @return always null: it needs none. Works at any time.
 */
TDM_API const char *tdm_requires(void);

/**
 * Starts the library.
 *
 * @param defines  macros that every parse begins with, as texts `NAME` or `NAME=value`; a NAME
 *                 alone has the value 1. Null for none. The texts are copied.
 *
 * Called again without tdm_cleanup() it starts messages, counters, macros, include directories and
 * limits anew; texts that were handed out stay valid, and so do specs. There is no result; what can
 * fail is that no memory is left.
 */
TDM_API void tdm_init(const tdm_arr *defines);

/**
 * Ends the library: frees the pool of texts, the messages, the macros and the include directories.
 *
 * All texts that the library returned and the positions in messages are invalid afterwards, the
 * last error text excepted, which has to be asked for again. Specs that still exist may only be
 * freed. Without tdm_init() it does nothing. tdm_init() may be called again.
 */
TDM_API void tdm_cleanup(void);

/* ============================================================================================== */
/* Parse and messages                                                                             */
/* ============================================================================================== */

/**
 * Reads the files, in the order of the array, as one input; builds the model and checks it.
 *
 * @param files         names of files, at least one; null is none, a failure. An absolute name is
 * opened as it is. A relative one is looked for in the include directories, then in the directories
 * of the environment, then in "../include/" - not in the working directory.
 * @param include_dirs  directories to look for files and for `#include` files in; may be empty or
 *                      null. They are added to those of earlier calls, until tdm_init() or
 *                      tdm_cleanup().
 * @return a new spec, which the caller ends with tdm_spec_free(); null after a failure.
 *
 * The first failure ends the parse. Its text has the position first, as
 * `["<file>" <line>/<column>] <label>: <text>`; line 0, column 0 stand for the input as a whole.
 * Without a position are: a file that cannot be opened, no file at all, a call before tdm_init(). A
 * failure of the address arithmetic (a mapping of more than 64 data lines) or exhausted memory
 * gives null too, but leaves the last error text as it was; tdm_inspect_failure_text() tells it.
 *
 * Errors of the preprocessor alone don't make the call fail, see tdm_get_error_count().
 */
TDM_API tdm_spec *tdm_parse_file(const tdm_arr *files, const tdm_arr *include_dirs);

/** Ends a spec with all that it owns; every handle into it becomes invalid. Null does nothing. */
TDM_API void tdm_spec_free(tdm_spec *spec);

/** How many errors the preprocessor reported since tdm_init(), over all parses; 0 for none. */
TDM_API int tdm_get_error_count(void);

/** How many warnings the preprocessor reported since tdm_init(), over all parses; 0 for none. */
TDM_API int tdm_get_warning_count(void);

/**
 * The errors that the preprocessor reported since tdm_init(), oldest first.
 *
 * @return a new array of tdm_message (by value, not pointers); give it back with tdm_arr_del(). The
 *         texts in it stay valid until tdm_cleanup(). May be asked for as often as is wanted.
 */
TDM_API tdm_arr *tdm_get_errors(void);

/** The warnings that the preprocessor reported since tdm_init(), in the same form. */
TDM_API tdm_arr *tdm_get_warnings(void);

/**
 * The text of the latest failure (convention 6), "" before the first one; never null.
 *
 * Works at any time. Asked between tdm_init() and tdm_cleanup(), the text is one of the pool and
 * stays valid as such, whatever fails later; asked outside of that time it is valid until the next
 * failure.
 */
TDM_API const char *tdm_get_last_error(void);

/** Frees an array that the library returned, but not what its elements point to. Works at any
 *  time. @param arr  not null, and not an array that the caller built */
TDM_API void tdm_arr_del(tdm_arr *arr);

/* ============================================================================================== */
/* Read the model: the spec                                                                       */
/* ============================================================================================== */

/** All processors. @return a new array of `tdm_processor *`, in the order of their definitions. */
TDM_API tdm_arr *tdm_spec_get_processors(const tdm_spec *spec);

/** The processor of that name. @return null if there is none. */
TDM_API tdm_processor *tdm_spec_get_processor(const tdm_spec *spec, const char *name);

/**
 * The global memories: those defined outside of all derivatives.
 *
 * @return a new array of `tdm_memory *`, in the order of their definitions.
 */
TDM_API tdm_arr *tdm_spec_get_memories(const tdm_spec *spec);

/** The global memory of that name. @return null if there is none; processors aren't searched. */
TDM_API tdm_memory *tdm_spec_get_memory(const tdm_spec *spec, const char *name);

/**
 * Every file that was opened for this spec, `#include` files too, under the name it was opened by.
 *
 * @return a new array of `const char *`, each file once, in ascending order.
 */
TDM_API tdm_arr *tdm_spec_get_file_dependencies(const tdm_spec *spec);

/* ============================================================================================== */
/* Read the model: processors                                                                     */
/* ============================================================================================== */

/** The name of the processor. */
TDM_API const char *tdm_processor_get_name(const tdm_processor *processor);

/** The name of the derivative that it is an instance of. */
TDM_API const char *tdm_processor_get_derivative_name(const tdm_processor *processor);

/** Where its name was written. @return null if nowhere. */
TDM_API tdm_source_location *tdm_processor_get_source_location(const tdm_processor *processor);

/** Its cores. @return a new array of `tdm_core *`: the derivative's own, then its bases'. */
TDM_API tdm_arr *tdm_processor_get_cores(const tdm_processor *processor);

/** The core of that plain name, without processor. @return null if there is none. */
TDM_API tdm_core *tdm_processor_get_core(const tdm_processor *processor, const char *name);

/** Its memories. @return a new array of `tdm_memory *`, in the same order as cores. */
TDM_API tdm_arr *tdm_processor_get_memories(const tdm_processor *processor);

/** The memory of that full name, `<processor>:<memory>`. @return null if there is none. */
TDM_API tdm_memory *tdm_processor_get_memory(const tdm_processor *processor, const char *full_name);

/* ============================================================================================== */
/* Read the model: cores                                                                          */
/* ============================================================================================== */

/** The plain name of the core. */
TDM_API const char *tdm_core_get_name(const tdm_core *core);

/** `<processor>:<core>` */
TDM_API const char *tdm_core_get_full_name(const tdm_core *core);

/** The name of the architecture that it is an instance of, as the core's definition gives it. */
TDM_API const char *tdm_core_get_arch_name(const tdm_core *core);

/** The name of the processor that it is in. */
TDM_API const char *tdm_core_get_processor_name(const tdm_core *core);

/** Where its name was written. @return null if nowhere. */
TDM_API tdm_source_location *tdm_core_get_source_location(const tdm_core *core);

/**
 * Its address spaces.
 *
 * @return a new array of `tdm_space *`: the defined ones, those of a derived architecture first;
 *         then, unless another core imports this one, the space `non alloc` that holds what isn't
 *         allocated; then the clone spaces that stand for several spaces at once.
 */
TDM_API tdm_arr *tdm_core_get_spaces(const tdm_core *core);

/** The first space with that id. @return null if there is none. */
TDM_API tdm_space *tdm_core_get_space_by_id(const tdm_core *core, int64_t id);

/** The first space whose full name or plain name is `name`. @return null if there is none. */
TDM_API tdm_space *tdm_core_get_space_by_name(const tdm_core *core, const char *name);

/**
 * The byte orders that it can run in, in the order of its definition.
 *
 * @return a new array of 32-bit numbers by value (element_size 4), see enum tdm_endianness.
 */
TDM_API tdm_arr *tdm_core_get_endianness(const tdm_core *core);

/** Its start address, which tdm_inspect_get_start_address() reads; or null. */
TDM_API tdm_start_address *tdm_core_get_start_address(const tdm_core *core);

/** The space that the start address is in. @return null without a start address. */
TDM_API tdm_space *tdm_core_get_start_address_space(const tdm_core *core);

/** The space that holds the copy table. @return null if there is none. */
TDM_API tdm_space *tdm_core_get_copytable_space(const tdm_core *core);

/* ============================================================================================== */
/* Read the model: buses                                                                          */
/* Results of translation hand them out; <tdm_c/tdm_inspect_model.h> lists them.                  */
/* ============================================================================================== */

/** The plain name of the bus. */
TDM_API const char *tdm_bus_get_name(const tdm_bus *bus);

/** `<processor>:<core>:<bus>`, without the prefixes that the bus hasn't got. */
TDM_API const char *tdm_bus_get_full_name(const tdm_bus *bus);

/** The plain name of the core that it is in. @return null for a bus outside of cores. */
TDM_API const char *tdm_bus_get_core_name(const tdm_bus *bus);

/** The name of the processor that it is in. @return null for a global bus. */
TDM_API const char *tdm_bus_get_processor_name(const tdm_bus *bus);

/** The size of its MAU, in bits. */
TDM_API int tdm_bus_get_mausize(const tdm_bus *bus);

/** Its data lines: bits, a multiple of the MAU size. */
TDM_API int tdm_bus_get_width(const tdm_bus *bus);

/** Its address lines: bits. @return -1 if the definition gives none. */
TDM_API int tdm_bus_get_address_width(const tdm_bus *bus);

/** 1 if it is declared to be a Wishbone bus. */
TDM_API int tdm_bus_get_wishbone(const tdm_bus *bus);

/** Where its name was written. @return null if nowhere. */
TDM_API tdm_source_location *tdm_bus_get_source_location(const tdm_bus *bus);

/* ============================================================================================== */
/* Read the model: memories                                                                       */
/* ============================================================================================== */

/** The plain name of the memory. */
TDM_API const char *tdm_memory_get_name(const tdm_memory *memory);

/** `<processor>:<memory>`, or the plain name of a global memory. */
TDM_API const char *tdm_memory_get_full_name(const tdm_memory *memory);

/** The name of the processor that it is in. @return null for a global memory. */
TDM_API const char *tdm_memory_get_processor_name(const tdm_memory *memory);

/** The size of its MAU, in bits. */
TDM_API int tdm_memory_get_mausize(const tdm_memory *memory);

/** Its size, in its own MAUs. */
TDM_API int64_t tdm_memory_get_size(const tdm_memory *memory);

/** Its kind, see enum tdm_memory_type. */
TDM_API int tdm_memory_get_type(const tdm_memory *memory);

/** 1 if it is reserved: nothing is placed in it unless it is asked for by name. */
TDM_API int tdm_memory_is_reserved(const tdm_memory *memory);

/** What gaps are filled with, or null. tdm_inspect_fillspec_values() and
 *  tdm_inspect_fillspec_alignment() give what it says. */
TDM_API tdm_fillspec *tdm_memory_get_fillspec(const tdm_memory *memory);

/** The `write_mode` of its definition. @return null if none is given. */
TDM_API const char *tdm_memory_get_write_mode(const tdm_memory *memory);

/** @{ */
/** A figure of its definition as it stands there, 0 where none is given; the description alone
 *  decides what it counts in. */
TDM_API int tdm_memory_get_setuptime(const tdm_memory *memory);
TDM_API int tdm_memory_get_holdtime(const tdm_memory *memory);
TDM_API int tdm_memory_get_cycles(const tdm_memory *memory);
TDM_API int tdm_memory_get_area(const tdm_memory *memory);
/** @} */

/** @{ */
/** The number of its ports of one kind. Where the definition gives none of the three, a rom has one
 *  read port, and every other memory has one port that reads and writes. */
TDM_API int tdm_memory_get_read_ports(const tdm_memory *memory);
TDM_API int tdm_memory_get_write_ports(const tdm_memory *memory);
TDM_API int tdm_memory_get_readwrite_ports(const tdm_memory *memory);
/** @} */

/**
 * The whole memory as an interval: [0, size) in its MAUs, no bank, every bit, priorities 0.
 *
 * @param memory  not null
 * @param out     receives the interval; not null. All zero after a failure.
 */
TDM_API void tdm_memory_get_addressrange(const tdm_memory *memory, tdm_interval *out);

/** Where its name was written. @return null if nowhere. */
TDM_API tdm_source_location *tdm_memory_get_source_location(const tdm_memory *memory);

/* ============================================================================================== */
/* Read the model: address spaces                                                                 */
/* ============================================================================================== */

/** The plain name of the space; of a clone space the names that it stands for, joined by "|". */
TDM_API const char *tdm_space_get_name(const tdm_space *space);

/** `<processor>:<core>:<space>`; begins with "::" for the space `non alloc`. */
TDM_API const char *tdm_space_get_full_name(const tdm_space *space);

/** The plain name of the core that it is in; "" for the space `non alloc`. */
TDM_API const char *tdm_space_get_core_name(const tdm_space *space);

/** The name of the processor that it is in; "" for the space `non alloc`. */
TDM_API const char *tdm_space_get_processor_name(const tdm_space *space);

/** Its id, the offset of the core counted in. */
TDM_API int tdm_space_get_id(const tdm_space *space);

/** The size of its MAU, in bits. */
TDM_API int tdm_space_get_mausize(const tdm_space *space);

/** The alignment of sections, in its MAUs. @return 0 if the definition gives none. */
TDM_API int tdm_space_get_alignment(const tdm_space *space);

/** The size of a page, in its MAUs. @return 0 if the definition gives none. */
TDM_API int tdm_space_get_pagesize(const tdm_space *space);

/** The ranges in each page that may be used. @return a new array of `tdm_range *` of the space. */
TDM_API tdm_arr *tdm_space_get_page_ranges(const tdm_space *space);

/** 1 if a section must not cross the end of a page. */
TDM_API int tdm_space_get_page_restrict_sections(const tdm_space *space);

/** Which end is filled first, see enum tdm_locate_direction. */
TDM_API int tdm_space_get_locate_direction(const tdm_space *space);

/** Its start address, which tdm_inspect_get_start_address() reads; or null. */
TDM_API tdm_start_address *tdm_space_get_start_address(const tdm_space *space);

/**
 * The space whose addresses are meant where the layouts of this one have plain numbers for the
 * places of groups: tdm_group_location_get_address() and its sisters translate them.
 * @return null if there is none: the numbers are addresses of the space itself
 */
TDM_API tdm_space *tdm_space_get_address_literal_space(const tdm_space *space);

/**
 * Sets what tdm_space_get_address_literal_space() gives from now on: the one thing in a spec that a
 * caller can change.
 *
 * @param space  whose layouts are meant; not null
 * @param other  of the same spec; may be null
 */
TDM_API void tdm_space_set_address_literal_space(tdm_space *space, tdm_space *other);

/**
 * The span from the lowest address that is mapped to the end of the highest, holes counted in.
 *
 * @param space  not null
 * @param out    receives the interval in MAUs of the space, no bank, every bit; not null. Both
 *               bounds are -1 in a space that maps nothing. The space `non alloc` has [0, 0) with
 *               a mask of no bits. All zero after a failure.
 */
TDM_API void tdm_space_get_valid_interval(const tdm_space *space, tdm_interval *out);

/* ============================================================================================== */
/* Read the model: ranges                                                                         */
/* ============================================================================================== */

/**
 * A new range, which the caller ends with tdm_range_delete().
 *
 * @param start  is copied; not null
 * @param size   in MAUs of the start; not checked
 * @return null if no memory is left
 */
TDM_API tdm_range *tdm_range_create(const tdm_addressvalue *start, int64_t size);

/** Ends a range of tdm_range_create(); never one of a space or an environment. Null does nothing.
 */
TDM_API void tdm_range_delete(tdm_range *range);

/** Its size, in MAUs of its start. */
TDM_API int64_t tdm_range_get_size(const tdm_range *range);

/** Where it begins. @param range  not null @param out  receives the address; not null */
TDM_API void tdm_range_get_start_address(const tdm_range *range, tdm_addressvalue *out);

/* ============================================================================================== */
/* Read the model: byte orders and source locations                                               */
/* ============================================================================================== */

/** "big", "little", "<not set>" for 0, and "<unknown>" for all that is not in tdm_endianness. */
TDM_API const char *tdm_endianness_to_string(int endianness);

/** The byte order as address arithmetic numbers it: 2 for big, 1 for little, 0 for all else. */
TDM_API int tdm_endianness_to_maulib(int endianness);

/** The name of the file, as messages show it. */
TDM_API const char *tdm_source_location_get_filename(const tdm_source_location *location);

/** The line, from 1; 0 stands for the input as a whole. */
TDM_API int tdm_source_location_get_line_number(const tdm_source_location *location);

/** The column, from 1; 0 stands for the input as a whole. */
TDM_API int tdm_source_location_get_column_number(const tdm_source_location *location);

/* ============================================================================================== */
/* What a translation reached                                                                     */
/* ============================================================================================== */

/**
 * @name The objects of results
 * The `object` of a result is the object in its role as one end of a mapping, and the address of
 * that role may differ from the address of the object: go through the conversions, never through
 * a cast. None of these functions fails; null is an object of no kind.
 *
 * @{
 */

/** 1 if the source of a mapping is a bus, else 0. */
TDM_API int tdm_mapsource_is_bus(const tdm_mapsource *source);

/** 1 if the source of a mapping is an address space of any kind, else 0. */
TDM_API int tdm_mapsource_is_space(const tdm_mapsource *source);

/** The bus that the source of a mapping is. @return null if it is something else. */
TDM_API tdm_bus *tdm_mapsource_get_bus(tdm_mapsource *source);

/** The address space that the source of a mapping is. @return null if it is something else. */
TDM_API tdm_space *tdm_mapsource_get_space(tdm_mapsource *source);

/** 1 if the destination of a mapping is a memory, else 0. */
TDM_API int tdm_mapdestination_is_memory(const tdm_mapdestination *destination);

/** 1 if the destination of a mapping is a bus, else 0. */
TDM_API int tdm_mapdestination_is_bus(const tdm_mapdestination *destination);

/** 1 if the destination of a mapping is an address space of any kind, else 0. */
TDM_API int tdm_mapdestination_is_space(const tdm_mapdestination *destination);

/** The memory that the destination of a mapping is. @return null if it is something else. */
TDM_API tdm_memory *tdm_mapdestination_get_memory(tdm_mapdestination *destination);

/** The bus that the destination of a mapping is. @return null if it is something else. */
TDM_API tdm_bus *tdm_mapdestination_get_bus(tdm_mapdestination *destination);

/** The address space that the destination of a mapping is. @return null if it is something else. */
TDM_API tdm_space *tdm_mapdestination_get_space(tdm_mapdestination *destination);

/** @} */

/* ============================================================================================== */
/* Translate addresses and intervals                                                              */
/* ============================================================================================== */

/**
 * @name Translations
 * The ten functions have one form:
 *
 *  - The first argument is where the address or interval is meant. It counts in MAUs of that object
 *    (tdm_space_get_mausize, tdm_memory_get_mausize); bank -1 stands for no bank. An interval of
 *    low = high translates as the one position that it names. Not null.
 *  - `results` receives a new array of results by value, one for each route, in the order of the
 *    mappings, depth first; an empty one if nothing is reached. Give it back with tdm_arr_del();
 *    the objects in it belong to the spec. Not null.
 *  - They return 1 if there is a route, else 0. No route is an answer, and the last error text
 *    stays. After a failure they return 0 with an empty array, and the last error text says why: an
 *    address that counts in another MAU than the object, a mask whose width isn't 1 to 64, a mask
 *    that would need more than 64 bits, or mappings that lead on and on (a million steps).
 *
 * What lies outside of a mapping yields nothing: an interval is cut to what is mapped. Priorities
 * of the mappings on a route are added forward, and subtracted backward. `reserved` is set if any
 * mapping on the route is reserved. An object that is reached over two routes comes twice.
 *
 * @{
 */

/** One step, over each mapping of the space. Array of tdm_map_interval_result; objects are
 *  `tdm_mapdestination *`. */
TDM_API int tdm_space_map_interval_forward(const tdm_space *space, const tdm_interval *interval,
                                           tdm_arr **results);

/** One step, over each mapping of the space. Array of tdm_map_address_result; objects are
 *  `tdm_mapdestination *`. */
TDM_API int tdm_space_map_addressvalue_forward(const tdm_space *space,
                                               const tdm_addressvalue *address, tdm_arr **results);

/** All routes to memories. Array of tdm_map_interval_result; objects are `tdm_memory *`, which may
 *  be used as `tdm_mapdestination *` too. */
TDM_API int tdm_space_map_interval_forward_to_memory(const tdm_space *space,
                                                     const tdm_interval *interval,
                                                     tdm_arr **results);

/** All routes to memories. Array of tdm_map_address_result; objects are `tdm_memory *`, which may
 *  be used as `tdm_mapdestination *` too. */
TDM_API int tdm_space_map_addressvalue_forward_to_memory(const tdm_space *space,
                                                         const tdm_addressvalue *address,
                                                         tdm_arr **results);

/** One step back, over each mapping of the memory. Array of tdm_map_interval_result; objects are
 *  `tdm_mapsource *`. */
TDM_API int tdm_memory_map_interval_backward(const tdm_memory *memory, const tdm_interval *interval,
                                             tdm_arr **results);

/** One step back, over each mapping of the memory. Array of tdm_map_address_result; objects are
 *  `tdm_mapsource *`. */
TDM_API int tdm_memory_map_addressvalue_backward(const tdm_memory *memory,
                                                 const tdm_addressvalue *address,
                                                 tdm_arr **results);

/** Every bus on all routes back, not only the last one. Array of tdm_map_interval_result; objects
 *  are `tdm_mapsource *`. */
TDM_API int tdm_memory_map_interval_backward_to_bus(const tdm_memory *memory,
                                                    const tdm_interval *interval,
                                                    tdm_arr **results);

/** Every bus on all routes back, not only the last one. Array of tdm_map_address_result; objects
 *  are `tdm_mapsource *`. */
TDM_API int tdm_memory_map_addressvalue_backward_to_bus(const tdm_memory *memory,
                                                        const tdm_addressvalue *address,
                                                        tdm_arr **results);

/** Every address space on all routes back. Array of tdm_map_interval_result; objects are
 *  `tdm_mapsource *`. */
TDM_API int tdm_memory_map_interval_backward_to_space(const tdm_memory *memory,
                                                      const tdm_interval *interval,
                                                      tdm_arr **results);

/** Every address space on all routes back. Array of tdm_map_address_result; objects are
 *  `tdm_mapsource *`. */
TDM_API int tdm_memory_map_addressvalue_backward_to_space(const tdm_memory *memory,
                                                          const tdm_addressvalue *address,
                                                          tdm_arr **results);

/** @} */

/* ============================================================================================== */
/* Walk a space                                                                                   */
/* ============================================================================================== */

/**
 * Reads a space to the caller, in callbacks: its definitions and then its section layouts,
 * statement by statement, in one fixed order.
 *
 * @param space                 whose definitions and layouts are read; not null
 * @param callbacks             called for what is met, see tdm_walk_callbacks; it has to stay valid
 *                              during the call. Null stands for a table of nulls.
 * @param user                  handed to each callback
 * @param expression_callbacks  what `exists` in the condition of an `if` asks; null: a condition
 *                              that asks it is a failure
 * @param expression_user       handed to those
 *
 * The order: every stack_def, every heap_def, copy_table, direct_init if there is one, every
 * vector_table_begin, every reserved_range; then for each layout section_layout_begin, its
 * statements, section_layout_end; at last every vector_table_end.
 *
 * The first failure ends the walk where it stands, without the ends of what is open, and the last
 * error text says why: rules of a group that contradict those around it, or a condition that needs
 * what a caller of this interface can't give. There is no result: tdm_inspect_failure_count() tells
 * whether the walk failed.
 */
TDM_API void tdm_space_walk(tdm_space *space, const tdm_walk_callbacks *callbacks, void *user,
                            const tdm_expression_callbacks *expression_callbacks,
                            void *expression_user);

/* ============================================================================================== */
/* What a walk hands out: definitions of a space                                                  */
/* ============================================================================================== */

/**
 * @name Definitions of a space
 * Sizes of definitions and statements count in MAUs of the space. They are evaluated when they are
 * first asked for; one that needs the addresses or sizes of sections is a failure, 0. Source
 * locations belong to the spec and are null where none is known.
 *
 * @{
 */

/** The name of a stack, as it was written. */
TDM_API const char *tdm_stack_def_get_name(const tdm_stack_def *definition);

/** Its least size. */
TDM_API int64_t tdm_stack_def_get_minimal_size(const tdm_stack_def *definition);

/** Its alignment, in MAUs of the space. @return 1 if the definition gives none. */
TDM_API int tdm_stack_def_get_alignment(const tdm_stack_def *definition);

/** 1 if its size is fixed at the least size, else 0. */
TDM_API int tdm_stack_def_get_fixed(const tdm_stack_def *definition);

/** Where its name stands. */
TDM_API tdm_source_location *tdm_stack_def_get_source_location(const tdm_stack_def *definition);

/** The name of a heap, as it was written. */
TDM_API const char *tdm_heap_def_get_name(const tdm_heap_def *definition);

/** Its least size. */
TDM_API int64_t tdm_heap_def_get_minimal_size(const tdm_heap_def *definition);

/** Its alignment, in MAUs of the space. @return 1 if the definition gives none. */
TDM_API int tdm_heap_def_get_alignment(const tdm_heap_def *definition);

/** 1 if its size is fixed at the least size, else 0. */
TDM_API int tdm_heap_def_get_fixed(const tdm_heap_def *definition);

/** Where its name stands. */
TDM_API tdm_source_location *tdm_heap_def_get_source_location(const tdm_heap_def *definition);

/** The first address of a reserved range, in MAUs of the space. */
TDM_API int64_t tdm_reserved_range_get_low(const tdm_reserved_range *range);

/** Its second bound, in MAUs of the space: the first address behind it. */
TDM_API int64_t tdm_reserved_range_get_high(const tdm_reserved_range *range);

/** The name of a vector table. */
TDM_API const char *tdm_vector_table_get_name(const tdm_vector_table *table);

/** The number of its vectors. */
TDM_API int64_t tdm_vector_table_get_size(const tdm_vector_table *table);

/** The size of one vector, in MAUs of the space. */
TDM_API int64_t tdm_vector_table_get_vector_size(const tdm_vector_table *table);

/** Its address, in MAUs of the space. @return 0 also if the definition gives none. */
TDM_API int64_t tdm_vector_table_get_run_address(const tdm_vector_table *table);

/** Where its name stands. */
TDM_API tdm_source_location *tdm_vector_table_get_source_location(const tdm_vector_table *table);

/** @} */

/* ============================================================================================== */
/* What a walk hands out: statements                                                              */
/* ============================================================================================== */

/** Where a layout begins. */
TDM_API tdm_source_location *
tdm_section_layout_get_source_location(const tdm_section_layout *layout);

/** The alignment of the innermost scope that sets one, in MAUs of the space; 0 if none does, and
 *  after a failure. */
TDM_API int64_t tdm_statement_env_get_alignment(const tdm_statement_env *env);

/** The name of a section that is made on the spot. */
TDM_API const char *
tdm_create_section_statement_get_name(const tdm_create_section_statement *statement);

/** Its size, or its block size if only that is given; above 0. */
TDM_API int64_t
tdm_create_section_statement_get_size(const tdm_create_section_statement *statement);

/** Its attributes, which belong to the statement; a set without flags if none are written. */
TDM_API tdm_attributes *
tdm_create_section_statement_get_attributes(const tdm_create_section_statement *statement);

/** Where it begins. */
TDM_API tdm_source_location *
tdm_create_section_statement_get_source_location(const tdm_create_section_statement *statement);

/** The name of a heap in a layout. */
TDM_API const char *tdm_heap_statement_get_name(const tdm_heap_statement *statement);

/** Its size; 0 if none is given. */
TDM_API int64_t tdm_heap_statement_get_size(const tdm_heap_statement *statement);

/** Where its name stands. */
TDM_API tdm_source_location *
tdm_heap_statement_get_source_location(const tdm_heap_statement *statement);

/** The name of a stack in a layout. */
TDM_API const char *tdm_stack_statement_get_name(const tdm_stack_statement *statement);

/** Its size; 0 if none is given. */
TDM_API int64_t tdm_stack_statement_get_size(const tdm_stack_statement *statement);

/** Where its name stands. */
TDM_API tdm_source_location *
tdm_stack_statement_get_source_location(const tdm_stack_statement *statement);

/** The name of a reserved area in a layout. */
TDM_API const char *tdm_reserved_statement_get_name(const tdm_reserved_statement *statement);

/** Its size; 0 if none is given. */
TDM_API int64_t tdm_reserved_statement_get_size(const tdm_reserved_statement *statement);

/** Its attributes, which belong to the statement; a set without flags if none are written. */
TDM_API tdm_attributes *
tdm_reserved_statement_get_attributes(const tdm_reserved_statement *statement);

/** 1 if sections with an address of their own may lie in it. */
TDM_API int
tdm_reserved_statement_get_alloc_allowed_absolute(const tdm_reserved_statement *statement);

/** 1 if sections with ranges of their own may lie in it. */
TDM_API int
tdm_reserved_statement_get_alloc_allowed_ranged(const tdm_reserved_statement *statement);

/** Where its name stands. */
TDM_API tdm_source_location *
tdm_reserved_statement_get_source_location(const tdm_reserved_statement *statement);

/** Where the statement `copytable` stands. */
TDM_API tdm_source_location *
tdm_table_statement_get_source_location(const tdm_table_statement *statement);

/** Flag `r` of a set of attributes: 1 or 0, as all flags. */
TDM_API int tdm_attributes_is_readable(const tdm_attributes *attributes);

/** Flag `w`. */
TDM_API int tdm_attributes_is_writable(const tdm_attributes *attributes);

/** Flag `x`. */
TDM_API int tdm_attributes_is_executable(const tdm_attributes *attributes);

/** Flag `i`. */
TDM_API int tdm_attributes_is_inited(const tdm_attributes *attributes);

/** Flag `s`. */
TDM_API int tdm_attributes_is_scratch(const tdm_attributes *attributes);

/** Flag `b`. */
TDM_API int tdm_attributes_is_blanked(const tdm_attributes *attributes);

/** 1 if no flag of the set is 1, nor flag `p`, which tdm_inspect_attributes_is_p() gives. */
TDM_API int tdm_attributes_none(const tdm_attributes *attributes);

/* ============================================================================================== */
/* What a walk hands out: groups                                                                  */
/* ============================================================================================== */

/** Where a group is to go: its run address, or its load address if it has no other. @return null if
 *  it has neither. */
TDM_API tdm_group_location *tdm_group_get_address(const tdm_group *group);

/** Where the group begins. */
TDM_API tdm_source_location *tdm_group_get_source_location(const tdm_group *group);

/** 1 if a location is an address, 0 if it is ranges. */
TDM_API int tdm_group_location_is_address(const tdm_group_location *location);

/**
 * @name Locations in numbers
 * The four functions below give numbers in MAUs of the space of the layout, computed anew for each
 * call: a location that is written in a memory or in the address literal space is translated to
 * the space. One that doesn't reach the space is a failure, 0.
 *
 * @{
 */

/** The address; 0 for a location of ranges. */
TDM_API int64_t tdm_group_location_get_address(const tdm_group_location *location);

/** How many ranges the location has in the space: one for each that is written in addresses, one
 *  for each route from a memory. An address counts as one, from the address to the address. */
TDM_API int tdm_group_location_count_ranges(const tdm_group_location *location);

/** The lower bound of a range. @param location  not null
 *  @param index  from 0 to the number of ranges - 1; 0 for another, which is no failure */
TDM_API int64_t tdm_group_location_get_range_start(const tdm_group_location *location, int index);

/** The upper bound of a range: as it is written, or the first address behind a range of a memory.
 *  @param location  not null
 *  @param index  from 0 to the number of ranges - 1; 0 for another, which is no failure */
TDM_API int64_t tdm_group_location_get_range_end(const tdm_group_location *location, int index);

/** @} */

/* ============================================================================================== */
/* Select sections                                                                                */
/* ============================================================================================== */

/**
 * A section of the caller's, in the form in which selections take it.
 *
 * @param handle     handed to each of the functions
 * @param functions  what the library asks of the section, see tdm_section_functions; not copied: it
 *                   has to stay valid while the section exists. Not null.
 * @return a new section, which the caller ends with tdm_section_delete(); null if no memory is left
 *
 * The name is asked for here and never again.
 */
TDM_API tdm_section *tdm_section_create(void *handle, const tdm_section_functions *functions);

/** Ends a section of tdm_section_create(), not what its handle points to. Null does nothing. */
TDM_API void tdm_section_delete(tdm_section *section);

/** The one name that a selection is for. @return null if it has no name, or one with wildcards. */
TDM_API const char *
tdm_selection_statement_get_literal_section_name(const tdm_selection_statement *statement);

/** 1 if it also selects the sections that those selected refer to (`ref_tree`), else 0. */
TDM_API int tdm_selection_statement_use_reference_tree(const tdm_selection_statement *statement);

/** Its conditions on attributes, one for each `attributes`. @return a new array of
 *  `tdm_section_selector *`, see tdm_inspect_section_selector_required() and its sisters. */
TDM_API tdm_arr *tdm_selection_statement_get_selectors(const tdm_selection_statement *statement);

/**
 * Calls the function for each section that the statement selects.
 *
 * @param statement  from the callback `selection` of a walk
 * @param env        the environment that came with it
 * @param sections   array of `tdm_section *`: those that are still to be placed; not null. It is
 *                   only read: a caller that doesn't want a section to be selected again takes it
 *                   out itself. A section that stands in it twice counts once.
 * @param function   gets the handle of tdm_section_create() and `user`; may be null. It may delete
 *                   the section.
 * @param verbose    not 0: the environment is told why sections are left out. Environments of
 *                   tdm_space_walk() ignore that.
 * @param user       handed to the function
 *
 * Sections come in the order of their names as bytes, those of one name in the order of the array.
 * There is no result; a failure (no memory left) ends the call, and the last error text says why.
 * A statement with neither a name nor attributes selects all. Inside a `load_addr` group the name
 * means the load-time copy, whose name is the section's in square brackets.
 */
TDM_API void tdm_selection_statement_get_sections(tdm_selection_statement *statement,
                                                  tdm_statement_env *env, const tdm_arr *sections,
                                                  void (*function)(void *handle, void *user),
                                                  int verbose, void *user);

/** Where it begins. */
TDM_API tdm_source_location *
tdm_selection_statement_get_source_location(const tdm_selection_statement *statement);

#ifdef __cplusplus
}
#endif

#endif
