// How the model's values are told to people, wherever they stand: names, expressions, mappings, and
// where things were written.
#pragma once

#include <string>
#include <vector>

#include <tdm_c/tdm_inspect.h>

#include "file_names.h"
#include "tree.h"

namespace tool {

/// One end of a mapping.
struct End {
  const char *kind; ///< "space", "bus" or "memory"
  std::string name; ///< the full one
};
[[nodiscard]] End end_of(tdm_mapsource *source);
[[nodiscard]] End end_of(tdm_mapdestination *destination);

/// "(8-bit MAUs)"
[[nodiscard]] std::string unit_text(int mau);

/// "map boot to bus chip:cpu:local", in the words of its source.
[[nodiscard]] std::string mapping_text(const tdm_mapping *mapping);

/// "data lines 0..7 of 16 → 0..7 of 8", in the direction in which the mapping is crossed; "" if it
/// connects all lines of both ends.
[[nodiscard]] std::string lines_text(const tdm_inspect_mapping &mapping, bool forward);

/// "priority 2, to execute 3"; "" for 0.
[[nodiscard]] std::string priority_text(int32_t priority, int32_t exec_priority);

/// An expression as an address, as a size, or as a number; as it was written if it can't be
/// evaluated yet; "" for null.
[[nodiscard]] std::string address_text(const tdm_expression *expression);
[[nodiscard]] std::string size_text(const tdm_expression *expression, int mau);
[[nodiscard]] std::string number_text(const tdm_expression *expression);

/// "1, 255 aligned to 4"; "" for null.
[[nodiscard]] std::string fill_text(const tdm_fillspec *fill);

/// "chip.tdm:4:7", and "chip.tdm:4"
[[nodiscard]] std::string place_text(const FileNames &names, const tdm_srcpos &place);
[[nodiscard]] std::string line_text(const FileNames &names, const tdm_srcpos &place);

/// Where each part of an object was written, a line each.
[[nodiscard]] std::vector<std::string> origin_lines(const FileNames &names, int kind,
                                                    const void *object);

/// Where the object itself was written, by the first of its parts that is known; "" for none.
[[nodiscard]] std::string origin_text(const FileNames &names, int kind, const void *object);

} // namespace tool
