/**
 * @file
 * Translation in full: one step over a given mapping, walks from any object, and routes with all
 * their hops. Part of <tdm_c/tdm_inspect.h>.
 *
 * The conventions of tdm.h and of <tdm_c/tdm_inspect_model.h> hold, and those of the translations
 * in tdm.h: an address or an interval is given in MAUs of the object where the translation begins,
 * and one in other MAUs is a failure; each value that comes out carries the MAU of the object that
 * it belongs to. "Forward" leads from spaces over buses to memories. Forward a step adds the
 * priorities of its mapping to those of an interval, backward it subtracts them.
 */
#ifndef TDM_C_TDM_INSPECT_ROUTE_H
#define TDM_C_TDM_INSPECT_ROUTE_H

#include <stdint.h>

#include <tdm_c/tdm_inspect_types.h>
#include <tdm_c/tdm_types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ============================================================================================== */
/* Objects as ends of mappings                                                                    */
/* ============================================================================================== */

/** @{ */
/** An object in its role in a mapping, as tdm_mapsource_get_space() and its sisters tell it the
 *  other way. None of these functions fails; null gives null. */
TDM_API tdm_mapsource *tdm_inspect_space_as_source(tdm_space *space);
TDM_API tdm_mapsource *tdm_inspect_bus_as_source(tdm_bus *bus);
TDM_API tdm_mapdestination *tdm_inspect_space_as_destination(tdm_space *space);
TDM_API tdm_mapdestination *tdm_inspect_bus_as_destination(tdm_bus *bus);
TDM_API tdm_mapdestination *tdm_inspect_memory_as_destination(tdm_memory *memory);
/** @} */

/* ============================================================================================== */
/* One mapping                                                                                    */
/* ============================================================================================== */

/**
 * @name One mapping
 * One step over one mapping. Each takes a value in MAUs of the end where the step begins and gives
 * one in MAUs of the other end: 1 and the value in `out`; 0, with `out` as it was, if the mapping
 * doesn't carry it or after a failure. No pointer may be null; `out` may be what is given.
 *
 * @{
 */

/** From the source to the destination. */
TDM_API int tdm_inspect_mapping_map_addressvalue_forward(const tdm_mapping *mapping,
                                                         const tdm_addressvalue *address,
                                                         tdm_addressvalue *out);
/** From the destination to the source. */
TDM_API int tdm_inspect_mapping_map_addressvalue_backward(const tdm_mapping *mapping,
                                                          const tdm_addressvalue *address,
                                                          tdm_addressvalue *out);
/** From the source to the destination: what of the interval the mapping covers. */
TDM_API int tdm_inspect_mapping_map_interval_forward(const tdm_mapping *mapping,
                                                     const tdm_interval *interval,
                                                     tdm_interval *out);
/** From the destination to the source: what of the interval the mapping covers. */
TDM_API int tdm_inspect_mapping_map_interval_backward(const tdm_mapping *mapping,
                                                      const tdm_interval *interval,
                                                      tdm_interval *out);

/** @} */

/* ============================================================================================== */
/* From any object                                                                                */
/* ============================================================================================== */

/**
 * @name From any object
 * What the functions tdm_space_map_...() and tdm_memory_map_...() do for spaces and memories, for
 * every object: buses have both directions, and spaces can be reached. `*results` is set to a new
 * array of tdm_map_address_result or tdm_map_interval_result, empty without a route or after a
 * failure. Each returns 1 if there is a route, else 0; no route is no failure.
 *
 * @{
 */

/** One step over each mapping that leaves it. The objects are `tdm_mapdestination *`. */
TDM_API int tdm_inspect_mapsource_map_addressvalue_forward(const tdm_mapsource *source,
                                                           const tdm_addressvalue *address,
                                                           tdm_arr **results);
/** The same for an interval. */
TDM_API int tdm_inspect_mapsource_map_interval_forward(const tdm_mapsource *source,
                                                       const tdm_interval *interval,
                                                       tdm_arr **results);
/** On to all memories. The objects are `tdm_memory *`. */
TDM_API int tdm_inspect_mapsource_map_addressvalue_forward_to_memory(
    const tdm_mapsource *source, const tdm_addressvalue *address, tdm_arr **results);
/** The same for an interval. */
TDM_API int tdm_inspect_mapsource_map_interval_forward_to_memory(const tdm_mapsource *source,
                                                                 const tdm_interval *interval,
                                                                 tdm_arr **results);
/** One step back over each mapping that reaches it. The objects are `tdm_mapsource *`, here and
 *  below. */
TDM_API int tdm_inspect_mapdestination_map_addressvalue_backward(
    const tdm_mapdestination *destination, const tdm_addressvalue *address, tdm_arr **results);
/** The same for an interval. */
TDM_API int tdm_inspect_mapdestination_map_interval_backward(const tdm_mapdestination *destination,
                                                             const tdm_interval *interval,
                                                             tdm_arr **results);
/** Back to all buses on the way. */
TDM_API int tdm_inspect_mapdestination_map_addressvalue_backward_to_bus(
    const tdm_mapdestination *destination, const tdm_addressvalue *address, tdm_arr **results);
/** The same for an interval. */
TDM_API int tdm_inspect_mapdestination_map_interval_backward_to_bus(
    const tdm_mapdestination *destination, const tdm_interval *interval, tdm_arr **results);
/** Back to all spaces on the way. */
TDM_API int tdm_inspect_mapdestination_map_addressvalue_backward_to_space(
    const tdm_mapdestination *destination, const tdm_addressvalue *address, tdm_arr **results);
/** The same for an interval. */
TDM_API int tdm_inspect_mapdestination_map_interval_backward_to_space(
    const tdm_mapdestination *destination, const tdm_interval *interval, tdm_arr **results);

/** @} */

/* ============================================================================================== */
/* Routes                                                                                         */
/* ============================================================================================== */

/** Where routes backward end. */
enum tdm_route_end {
  TDM_ROUTE_TO_BUS = 1, /**< at each bus on the way */
  TDM_ROUTE_TO_SPACE    /**< at each space on the way */
};

/**
 * One mapping that a route crosses. "Near" is the end where the hop begins, "far" the one where it
 * arrives: forward the far end is the destination, backward the source.
 */
typedef struct tdm_inspect_hop {
  int32_t route;         /**< number of the route, from 0 */
  int32_t reserved;      /**< 1 if this mapping or one before it on the route is reserved */
  tdm_mapping *mapping;  /**< all else of it: tdm_inspect_get_mapping() */
  tdm_mapsource *source; /**< its source, the near end forward */
  tdm_mapdestination *destination; /**< its destination, the far end forward */
  tdm_interval interval;  /**< where the route arrives, in MAUs of the far end, with its bank and
                               the data lines in the mask. Of an address low and high are the
                               same, and the mask is one of every bit. The priorities are those
                               of the route up to here; one of an address begins with 0. */
  int32_t near_line_low;  /**< data lines of the near end that the mapping connects, from 0 */
  int32_t near_line_high; /**< the last one, included */
  int32_t far_line_low;   /**< goes with near_line_low */
  int32_t far_line_high;  /**< the last one, included */
} tdm_inspect_hop;

/**
 * @name Routes
 * All routes, each with all its hops. Each function gives a new array of tdm_inspect_hop by value:
 * the hops of route 0 from the start to the end, then those of route 1, and so on. It is empty
 * without a route or after a failure; no route is no failure, more than a million hops is one.
 *
 * Routes are as many, end where, and stand in the order that the translation of the same name
 * tells them: the last hop of each route is its result.
 *
 * @{
 */

/** From a source to all memories. */
TDM_API tdm_arr *tdm_inspect_addressvalue_routes_to_memory(const tdm_mapsource *source,
                                                           const tdm_addressvalue *address);
/** The same for an interval. */
TDM_API tdm_arr *tdm_inspect_interval_routes_to_memory(const tdm_mapsource *source,
                                                       const tdm_interval *interval);
/** From a destination back. `end` is one of enum tdm_route_end; there is no route to another. */
TDM_API tdm_arr *tdm_inspect_addressvalue_routes_back(const tdm_mapdestination *destination,
                                                      int end, const tdm_addressvalue *address);
/** The same for an interval. */
TDM_API tdm_arr *tdm_inspect_interval_routes_back(const tdm_mapdestination *destination, int end,
                                                  const tdm_interval *interval);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
