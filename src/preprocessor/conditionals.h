// The stack of open conditionals, and the memo of the groups that they skip.
#pragma once

#include <cstdint>

#include "common/tdm_types.h"

/// One open #if, #ifdef or #ifndef, or the base record for the whole input.
struct TDMConditional {
  TDMConditional *next; ///< the enclosing one, null in the base record
  unsigned flags;
  tdm_srcpos position;      ///< of the "#" of the opening directive
  std::uint32_t skip_start; ///< physical line of the opening directive while a memo is recorded
  std::uint32_t file;       ///< serial of the input that the memo is recorded for
};

namespace tdm {

enum ConditionalFlag : unsigned {
  group_active = 0x01,
  allows_if = 0x02,
  allows_elif = 0x04,
  allows_else = 0x08,
  allows_endif = 0x10,
  branch_taken = 0x20,
};

void conditionals_start();
void conditionals_stop();

/// Off, every group is scanned each time it is read; for tests, as the tokens are the same.
void skip_memo_enable(bool enabled);

/// The innermost open conditional. Only conditionals.cpp changes it.
[[gnu::visibility("hidden")]] extern TDMConditional *conditional_top;

[[nodiscard]] inline bool conditional_active()
{
  return (conditional_top->flags & group_active) != 0;
}

void conditional_push(const tdm_srcpos &position);
void conditional_pop();

/// Whether the enclosing group is active and no branch was taken yet, so that a condition counts.
[[nodiscard]] bool conditional_wants_condition();

/// Makes the group active if the condition holds (and counts).
void conditional_decide(bool condition);

/// The effect of #else.
void conditional_else();

/// Reports each open conditional at the end of input and closes it.
void conditionals_end_of_input();

/// Where a directive stands in the real file; line 0 outside files.
struct DirectivePlace {
  const char *file;
  std::uint32_t line;
  std::uint32_t serial; ///< of the input
};

/// At the end of an opening directive's line: goes over the first group, if it is to be skipped and
/// was met before, or else starts to record where it ends.
void skip_memo_open(const DirectivePlace &place);

/// At #elif, #else and #endif: enters what has been recorded.
void skip_memo_close(const DirectivePlace &place);

} // namespace tdm
