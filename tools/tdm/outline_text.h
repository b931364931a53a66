// An outline as a tree for people. A block that is all that a statement holds isn't shown by
// itself.
//
//   space cpu1:cor1:lin  8-bit MAUs
//   ├─ stack definition "s1"  min size 0x10 (16 B), align 8, fixed, layout.tdm:11
//   └─ layout  layout.tdm:16
//      └─ group g  run_addr 0x400..0x500 (mem:ram), layout.tdm:25
//         └─ select ".data*"  attributes +w, layout.tdm:25
#pragma once

#include <functional>

#include "file_names.h"
#include "outline.h"
#include "tree.h"

namespace tool {

/// Adds to what is shown of an item, before its place in the files.
using Annotate = std::function<void(const Item &, Facts &, Node &)>;

[[nodiscard]] Node outline_tree(const Outline &outline, const FileNames &names,
                                const Annotate &annotate = {});

} // namespace tool
