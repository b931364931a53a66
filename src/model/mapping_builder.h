// Makes the edges of the mapping graph from `map` entries, and tells the mapping engine what the
// objects of the model are.
#pragma once

#include <memory>
#include <string>

#include "mapping/mapping.h"

struct TDMBus;
class TDMFileMapping;
struct TDMMemory;
struct TDMSpace;

namespace tdm {

class ArgumentScope;

/// What an object is as an end of a mapping, and how many data lines it has.
[[nodiscard]] MapEnd map_end(TDMBus &bus);
[[nodiscard]] MapEnd map_end(TDMMemory &memory);
[[nodiscard]] MapEnd map_end(TDMSpace &space);

/// The defining object is the source; the destination is found later.
[[nodiscard]] std::unique_ptr<TDMMapping> make_forward_mapping(const TDMFileMapping &record,
                                                               const ArgumentScope &scope,
                                                               TDMMapSource &source,
                                                               const MapEnd &end);

/// The defining object is the destination: the entry is written as seen from it, so that its
/// destination fields describe the source. The source is found later.
[[nodiscard]] std::unique_ptr<TDMMapping> make_reversed_mapping(const TDMFileMapping &record,
                                                                const ArgumentScope &scope,
                                                                TDMMapDestination &destination,
                                                                const MapEnd &end);

} // namespace tdm
