// Operator precedence, as a loop for each level of nesting.
//
// One *reading* takes a primary and then all operators that bind tighter than its minimum. Right
// operands and what stands in parentheses are readings of their own. They nest as a file likes, so
// readings at work are kept on a stack here and not on the machine's; beyond a limit the condition
// is malformed.
//
// A fault doesn't end the evaluation at once: the token at fault is remembered, all loops stop, and
// the operators that wait for an operand get what there is.
#include "preprocessor/condition.h"

#include <vector>

#include "preprocessor/c_con.h"
#include "preprocessor/c_diag.h"
#include "preprocessor/directives.h"
#include "preprocessor/macro_expand.h"
#include "preprocessor/macros.h"
#include "preprocessor/string_pool.h"

namespace tdm {

namespace {

constexpr std::size_t deepest_nesting = 10000;
constexpr int tightest = 99; ///< the minimum of the operand of a sign: no operator binds tighter
constexpr int in_parentheses = 1;
constexpr int middle_operand = 3;
constexpr int last_operand = 2;

struct PrecedenceRow {
  int token;
  int precedence;
};

constexpr PrecedenceRow precedences[] = {
    {tMUL, 13}, {tDIV, 13}, {tMOD, 13}, {tADD, 12}, {tSUB, 12},  {tSHL, 11},  {tSHR, 11},
    {tLT, 10},  {tLE, 10},  {tGT, 10},  {tGE, 10},  {tEQ, 9},    {tNE, 9},    {tAND, 8},
    {tXOR, 7},  {tOR, 6},   {tLAND, 5}, {tLOR, 4},  {tQMARK, 3}, {tCOLON, 2}, {tRPAR, 1},
};

int precedence_of(int token)
{
  for (const PrecedenceRow &row : precedences)
    if (row.token == token) return row.precedence;
  return 0;
}

struct Reading {
  int minimum;
  bool evaluated;
  bool unsigned_at_entry;
  TDMWideValue value = {};
  TDMWideValue middle = {};
  bool has_primary = false;
  bool waits_for_colon = false; ///< behind a "?"
  bool condition = false;       ///< of the "?"
  int operation = tEOF;         ///< that waits for the result of the reading above this one
  bool prefix = false;          ///< it is a prefix operator or a "("
};

class Evaluation {
public:
  TDMWideValue run()
  {
    advance();
    open(0, true);
    while (!readings_.empty()) step();
    if (!failed_ && token_.number != tNEWLINE) fail();
    return result_;
  }

  [[nodiscard]] bool failed() const { return failed_; }
  [[nodiscard]] const tdm_srcpos &fault() const { return fault_; }

private:
  [[nodiscard]] bool at_end() const { return token_.number == tNEWLINE || token_.number == tEOF; }

  // Never goes beyond the end of the line.
  void advance()
  {
    if (!pp_line_ended()) token_ = pp_next_significant(true);
  }

  // Only the first token at fault counts.
  void fail()
  {
    if (failed_) return;
    failed_ = true;
    fault_ = token_.position;
  }

  void open(int minimum, bool evaluated) { readings_.push_back({minimum, evaluated, unsigned_}); }

  void close()
  {
    result_ = readings_.back().value.narrowed(unsigned_);
    readings_.pop_back();
  }

  // Does the next piece of work of the innermost reading.
  void step()
  {
    Reading &reading = readings_.back();
    if (reading.operation != tEOF) {
      const int operation = reading.operation;
      reading.operation = tEOF;
      if (reading.prefix)
        finish_prefix(reading, operation);
      else
        finish_binary(reading, operation);
    } else if (!reading.has_primary) {
      read_primary(reading);
    } else {
      read_operator(reading);
    }
  }

  // ---- primaries ----

  void set_primary(Reading &reading, TDMWideValue value)
  {
    reading.value = value;
    reading.has_primary = true;
  }

  void read_primary(Reading &reading)
  {
    switch (token_.number) {
    case tCHAR:
    case tWCHAR:
      set_primary(reading, character_constant(token_));
      advance();
      break;
    case tIDENT:
    case tIDENT2:
      if (token_.view() == "defined") {
        set_primary(reading, read_defined());
        break;
      }
      set_primary(reading, 0);
      advance();
      break;
    case tICON:
      set_primary(reading, integer_constant(token_, unsigned_));
      advance();
      break;
    case tLPAR:
    case tADD:
    case tSUB:
    case tCOMPL:
    case tNOT:
      open_prefix(reading);
      break;
    default:
      fail();
      set_primary(reading, 0);
    }
  }

  void open_prefix(Reading &reading)
  {
    if (readings_.size() > deepest_nesting) {
      fail();
      set_primary(reading, 0);
      return;
    }
    reading.operation = token_.number;
    reading.prefix = true;
    const int minimum = token_.number == tLPAR ? in_parentheses : tightest;
    advance();
    open(minimum, reading.evaluated);
  }

  void finish_prefix(Reading &reading, int operation)
  {
    switch (operation) {
    case tSUB:
      result_ = TDMWideValue(0) - result_;
      break;
    case tCOMPL:
      result_ = ~result_;
      break;
    case tNOT:
      result_ = result_.is_zero() ? 1 : 0;
      break;
    case tLPAR:
      if (token_.number != tRPAR)
        fail();
      else
        advance();
      break;
    default:
      break;
    }
    set_primary(reading, result_);
  }

  // The operator `defined`, whose word is the current token.
  TDMWideValue read_defined()
  {
    const bool from_macro = list_has_next();
    const PpToken *token = &pp_next_significant(false);
    const bool in_brackets = token->number == tLPAR;
    if (in_brackets) token = &pp_next_significant(false);
    const bool has_name = token->number == tIDENT || token->number == tIDENT2;
    const bool defined = has_name && macro_lookup(token->text) != nullptr;
    if (has_name && in_brackets) token = &pp_next_significant(false);
    if (!has_name || (in_brackets && token->number != tRPAR)) {
      token_ = *token;
      diag_at(E_defined, token_.position);
      return 0;
    }
    if (from_macro) diag_at(W_defined_macro, token->position);
    advance();
    return defined ? 1 : 0;
  }

  // ---- operators ----

  void read_operator(Reading &reading)
  {
    if (at_end() || failed_) {
      end_reading(reading);
      return;
    }
    const int operation = token_.number;
    const int precedence = precedence_of(operation);
    if (precedence == 0) {
      fail();
      end_reading(reading);
      return;
    }
    if (precedence + (reading.waits_for_colon ? 1 : 0) <= reading.minimum) {
      end_reading(reading);
      return;
    }
    start_operation(reading, operation, precedence);
  }

  void end_reading(const Reading &reading)
  {
    if (reading.waits_for_colon) fail();
    close();
  }

  void start_operation(Reading &reading, int operation, int precedence)
  {
    const bool truth = !reading.value.is_zero();
    int minimum = precedence;
    bool evaluated = reading.evaluated;
    switch (operation) {
    case tRPAR:
      fail();
      return;
    case tLAND:
      evaluated = truth;
      break;
    case tLOR:
      evaluated = !truth;
      break;
    case tQMARK:
      reading.condition = evaluated = truth;
      unsigned_ = reading.unsigned_at_entry;
      minimum = middle_operand;
      break;
    case tCOLON:
      if (!reading.waits_for_colon) {
        fail();
        return;
      }
      evaluated = !reading.condition;
      minimum = last_operand;
      break;
    default:
      break;
    }
    reading.operation = operation;
    reading.prefix = false;
    advance();
    open(minimum, evaluated);
  }

  static bool compares(int operation, TDMWideValue left, TDMWideValue right)
  {
    switch (operation) {
    case tLT:
      return left < right;
    case tLE:
      return !(right < left);
    case tGT:
      return right < left;
    case tGE:
      return !(left < right);
    case tEQ:
      return left == right;
    default:
      return !(left == right);
    }
  }

  void divide(Reading &reading, int operation)
  {
    if (!result_.is_zero())
      reading.value = operation == tDIV ? reading.value / result_ : reading.value % result_;
    else if (reading.evaluated)
      diag_at(E_division_by_zero, token_.position);
  }

  // The right operand has been read, it is the result.
  void finish_binary(Reading &reading, int operation)
  {
    TDMWideValue &value = reading.value;
    switch (operation) {
    case tMUL:
      value = value * result_;
      break;
    case tADD:
      value = value + result_;
      break;
    case tSUB:
      value = value - result_;
      break;
    case tAND:
      value = value & result_;
      break;
    case tXOR:
      value = value ^ result_;
      break;
    case tOR:
      value = value | result_;
      break;
    case tSHL:
      value = value << result_;
      break;
    case tSHR:
      value = value >> result_;
      break;
    case tDIV:
    case tMOD:
      divide(reading, operation);
      break;
    case tLAND:
      value = !value.is_zero() && !result_.is_zero() ? 1 : 0;
      unsigned_ = reading.unsigned_at_entry;
      break;
    case tLOR:
      value = !value.is_zero() || !result_.is_zero() ? 1 : 0;
      unsigned_ = reading.unsigned_at_entry;
      break;
    case tQMARK:
      reading.middle = result_;
      reading.waits_for_colon = true;
      break;
    case tCOLON:
      value = reading.condition ? reading.middle : result_;
      reading.waits_for_colon = false;
      close();
      break;
    default:
      value = compares(operation, value.narrowed(unsigned_), result_) ? 1 : 0;
      unsigned_ = reading.unsigned_at_entry;
    }
  }

  std::vector<Reading> readings_;
  TDMWideValue result_;
  PpToken token_;
  bool unsigned_ = false;
  bool failed_ = false;
  tdm_srcpos fault_ = {};
};

} // namespace

} // namespace tdm

bool pp_eval_condition()
{
  tdm::Evaluation evaluation;
  const TDMWideValue value = evaluation.run();
  if (!evaluation.failed()) return !value.is_zero();
  diag_at(E_syntax_if, evaluation.fault());
  return true;
}
