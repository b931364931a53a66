// The evaluation of #if and #elif.
#pragma once

/// Reads the rest of the line and evaluates it. A malformed condition is reported and holds.
[[nodiscard]] bool pp_eval_condition();
