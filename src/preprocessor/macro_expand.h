// Macro expansion, and the list stack that its results are read from.
//
// The main read step (directives.h) takes tokens from the list stack while there are any, and hands
// each name to macro_expand, which may push a list. Everything here works on token lists; text is
// scanned again only for ##.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "preprocessor/pp_token.h"

namespace tdm {

void expansion_start();
void expansion_stop();

/// Takes the next token from the list stack; false when all lists have been read to their end.
bool list_next(PpToken &token);

/// The number of lists on the stack.
[[gnu::visibility("hidden")]] extern std::size_t list_count;
[[nodiscard]] inline bool list_stack_empty()
{
  return list_count == 0;
}

/// Whether a list is being read that has a token left.
[[nodiscard]] bool list_has_next();

/// Whether the token that was taken last belongs to a forwarded line, which is read as it stands.
[[nodiscard]] bool list_forwarding();

/// Puts tokens in front of the input, as they stand.
void list_push(const std::vector<PpToken> &tokens, bool forwarded);

/// Macros can multiply without end; tokens that are read from the input allow for more of it. The
/// limit is what an input begins with; only tests that want to be quick set a lower one.
struct ExpansionWork {
  std::uint64_t limit = 1 << 22;
  std::uint64_t done = 0;
  std::uint64_t allowed = limit;
};
[[gnu::visibility("hidden")]] extern ExpansionWork expansion_work;
constexpr std::uint64_t expansion_per_token = 64;

} // namespace tdm

/// Expands the macro that the token names. True when its expansion has been pushed on the list
/// stack (or the call has come to nothing); false when the token stays, though perhaps changed.
bool macro_expand(tdm::PpToken &name);
