// The allocator of this program: counts what is taken and given back, and refuses where it is told
// to. operator new is replaced, and malloc() and its kin are wrapped by the linker in all objects
// of the program, which the library's are among.
#pragma once

#include <cstddef>

namespace counting {

/// Blocks in use.
[[nodiscard]] std::size_t live();

/// Requests so far.
[[nodiscard]] std::size_t requests();

/// Which requests are refused from now on, the next one being number 0.
enum class Refuse { none, one, all_behind };
void refuse(Refuse which, std::size_t number = 0);

/// Whether one was refused since then.
[[nodiscard]] bool refused();

} // namespace counting
