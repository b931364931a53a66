// The body of a macro with the arguments in place.
//
// An argument beside ## or behind # goes in as it was written, any other one as it was expanded.
// An empty argument beside ## leaves a placemarker, which vanishes at the end. Pasting goes through
// the scanner, except that a name or number grows by letters and digits without it, however many
// pastes stand in a row.
#include <algorithm>
#include <span>
#include <string>

#include "preprocessor/c_diag.h"
#include "preprocessor/c_opt.h"
#include "preprocessor/c_scanner.h"
#include "preprocessor/macro_lists.h"
#include "preprocessor/string_pool.h"

namespace tdm {

namespace {

// How many characters of text count as much as a token.
constexpr std::size_t text_per_token = 4;

struct {
  TextBuffer text;
  TextBuffer joined;
} scratch;

bool is_number(int number)
{
  return number == tICON || number == tFCON;
}
bool is_name(int number)
{
  return number == tIDENT || number == tIDENT2;
}

bool is_name_character(char c)
{
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

class Substitution {
public:
  Substitution(const MacroCall &call, std::vector<PpToken> &result)
      : call_(call), macro_(*call.macro), result_(result)
  {
  }

  void run()
  {
    for (std::size_t i = 0; i < macro_.body_count && !expansion.exhausted; ++i) {
      const PpToken &token = macro_.body[i];
      if (token.number == tCONCAT) {
        i = paste_at(i);
      } else if (is_white(token.number)) {
        i = copy_white_at(i);
      } else {
        i = copy_at(i);
      }
    }
    finish_join();
    if (has_marker_)
      std::erase_if(result_, [](const PpToken &token) { return token.number == tMARKER; });
  }

private:
  PpToken marker()
  {
    has_marker_ = true;
    PpToken token;
    token.number = tMARKER;
    return token;
  }

  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  [[nodiscard]] std::size_t next_token(std::size_t i) const
  {
    while (++i < macro_.body_count)
      if (!is_white(macro_.body[i].number)) return i;
    return none;
  }

  [[nodiscard]] bool is_stringify(std::size_t i) const
  {
    return macro_.function_like && macro_.body[i].number == tHASH;
  }

  MacroArgument &argument_of(const PpToken &token)
  {
    return expansion.arguments[call_.first_argument + (token.link & parameter_index) - 1];
  }

  void append(const PpToken &token)
  {
    finish_join();
    result_.push_back(token);
    result_.back().link = 0;
    count_work(1, call_.name.position);
  }

  // Copies the white space that begins at i, unless a ## is behind it; gives the index of its last
  // token.
  std::size_t copy_white_at(std::size_t i)
  {
    const std::size_t next = next_token(i);
    const std::size_t end = next == none ? macro_.body_count : next;
    const bool drops = next != none && macro_.body[next].number == tCONCAT;
    for (; i < end; ++i)
      if (!drops) append(macro_.body[i]);
    return end - 1;
  }

  // Copies the body token at i, or what takes its place; gives the index of the last token used.
  std::size_t copy_at(std::size_t i)
  {
    const PpToken &token = macro_.body[i];
    if (is_stringify(i)) {
      const std::size_t parameter = next_token(i);
      append(stringified(argument_of(macro_.body[parameter])));
      return parameter;
    }
    if (token.link == 0)
      append(token);
    else if ((token.link & parameter_raw) != 0)
      append_raw(argument_of(token));
    else
      append_expanded(argument_of(token));
    return i;
  }

  // White space that an argument has at its ends only because a macro in a part of it came to
  // nothing is no part of it.
  template <class Function> void append_trimmed(const MacroArgument &argument, Function take_first)
  {
    std::size_t taken = 0; // length of the result when the first token was in it
    for_each_token(argument.begin, argument.end, [&](const PpToken &token) {
      if (taken > 0) {
        append(token);
      } else if (!is_white(token.number)) {
        take_first(token);
        taken = result_.size();
      }
      return !expansion.exhausted;
    });
    while (taken > 0 && result_.size() > taken && is_white(result_.back().number))
      result_.pop_back();
  }

  void append_raw(const MacroArgument &argument)
  {
    if (argument.begin == argument.end) append(marker());
    append_trimmed(argument, [this](const PpToken &token) { append(token); });
  }

  void append_expanded(const MacroArgument &argument)
  {
    finish_join();
    for (std::size_t i = 0; i < argument.expanded_count; ++i) {
      result_.push_back(argument.expanded[i]);
      result_.back().link = 0;
    }
    count_work(argument.expanded_count, call_.name.position);
  }

  // ---- # ----

  PpToken stringified(MacroArgument &argument)
  {
    if (argument.string == nullptr) make_string(argument);
    PpToken token;
    token.number = tSTRING;
    token.text = argument.string;
    token.length = argument.string_length;
    return token;
  }

  void make_string(MacroArgument &argument) const
  {
    scratch.text.clear();
    scratch.text.append('"');
    // What is left between two tokens when a macro between them expands to nothing is one blank.
    bool blank = false;
    for_each_token(argument.begin, argument.end, [&](const PpToken &token) {
      // Counted before it is copied: a few tokens can stand for any length of text.
      count_work(1 + token.length / text_per_token, call_.name.position);
      if (expansion.exhausted) return false;
      if (is_white(token.number) || token.number == tNEWLINE) {
        blank = scratch.text.length() > 1;
        return true;
      }
      if (blank) scratch.text.append(' ');
      blank = false;
      const bool quoted = token.number == tSTRING || token.number == tWSTRING ||
                          token.number == tCHAR || token.number == tWCHAR;
      if (!quoted) {
        scratch.text.append(token.view());
        return true;
      }
      for (const char c : token.view()) {
        if (c == '\\' || c == '"') scratch.text.append('\\');
        scratch.text.append(c);
      }
      return true;
    });
    scratch.text.append('"');
    argument.string = intern(scratch.text.view());
    argument.string_length = scratch.text.length();
  }

  // ---- ## ----

  // The paste whose ## stands at i; gives the index of the last token used.
  std::size_t paste_at(std::size_t i)
  {
    const std::size_t right = next_token(i);
    if (right == none) return i; // a faulty # stood there
    const PpToken &token = macro_.body[right];
    if (is_stringify(right)) {
      const std::size_t parameter = next_token(right);
      paste(stringified(argument_of(macro_.body[parameter])));
      return parameter;
    }
    if (token.link == 0)
      paste(token);
    else if (!removes_comma(token))
      paste_argument(argument_of(token));
    return right;
  }

  // `, ## __VA_ARGS__` with nothing given drops the comma, too.
  bool removes_comma(const PpToken &parameter)
  {
    const MacroArgument &argument = argument_of(parameter);
    const std::size_t index = (parameter.link & parameter_index) - 1;
    if (argument.begin != argument.end || !macro_.parameters[index].variadic ||
        result_.back().number != tCOMMA || !option_get_bool(optA_GCC))
      return false;
    result_.back() = marker();
    return true;
  }

  void paste_argument(const MacroArgument &argument)
  {
    append_trimmed(argument, [this](const PpToken &token) { paste(token); });
  }

  // Pastes a token to the last one of the result.
  void paste(const PpToken &right)
  {
    PpToken &left = result_.back();
    if (right.number == tMARKER) return;
    if (left.number == tMARKER) {
      left = right;
      left.link = 0;
    } else if (grows_by(left, right)) {
      if (!joining_) {
        scratch.joined.clear();
        scratch.joined.append(left.view());
        joining_ = true;
      }
      scratch.joined.append(right.view());
      count_work(1 + right.length / text_per_token, call_.name.position);
    } else {
      finish_join();
      rescan(right);
    }
  }

  static bool grows_by(const PpToken &left, const PpToken &right)
  {
    if (!is_name(left.number) && !is_number(left.number)) return false;
    if (!is_name(right.number) && !is_number(right.number)) return false;
    for (const char c : right.view())
      if (!is_name_character(c)) return false;
    return true;
  }

  void finish_join()
  {
    if (!joining_) return;
    joining_ = false;
    PpToken &token = result_.back();
    const bool number = is_number(token.number);
    const bool backslash = !number && (pooled(token.text).marks & mark_has_backslash) != 0;
    token.text = intern(scratch.joined.view());
    token.length = scratch.joined.length();
    token.number = tIDENT;
    if (backslash) pooled(token.text).marks |= mark_has_backslash;
    if (!number) return;
    scan(token.view());
    token.number = scanned_.front().number;
  }

  void scan(std::string_view text)
  {
    scratch.text.clear();
    scratch.text.append(text);
    scratch.text.append('\0');
    scanned_.clear();
    scanner_scan_text(scratch.text.view().substr(0, text.size()), scanned_);
  }

  void rescan(const PpToken &right)
  {
    const PpToken left = result_.back();
    count_work(1 + (left.length + right.length) / text_per_token, call_.name.position);
    if (expansion.exhausted) return;
    std::string text(left.view());
    text += right.view();
    scan(text);
    if (scanned_.front().view() == left.view()) diag_at(W_concat_failed, call_.name.position);
    result_.pop_back();
    for (const PpToken &token : scanned_) result_.push_back(token);
  }

  const MacroCall &call_;
  const TDMMacro &macro_;
  std::vector<PpToken> &result_;
  bool has_marker_ = false;
  std::vector<PpToken> scanned_;
  bool joining_ = false;
};

// The body of a macro without # and ##: runs of its tokens between the expanded arguments.
TokenSpan copied_body(const MacroCall &call)
{
  const TDMMacro &macro = *call.macro;
  const std::span runs(macro.runs, macro.run_count);
  const MacroArgument *const arguments = expansion.arguments.data() + call.first_argument;
  std::size_t count = macro.body_count;
  for (const BodyRun &run : runs) count += arguments[run.parameter].expanded_count - 1;
  count_work(count, call.name.position);
  if (expansion.exhausted || count == 0) return {};

  auto *const items = static_cast<PpToken *>(expansion.memory.allocate(count * sizeof(PpToken)));
  const PpToken *token = macro.body;
  PpToken *out = items;
  for (const BodyRun &run : runs) {
    out = std::copy_n(token, run.length, out);
    const MacroArgument &argument = arguments[run.parameter];
    out = std::copy_n(argument.expanded, argument.expanded_count, out);
    token += run.length + 1;
  }
  std::copy(token, macro.body + macro.body_count, out);
  return {items, count};
}

} // namespace

TokenSpan substitute(const MacroCall &call)
{
  if (!call.macro->has_operators) return copied_body(call);
  std::vector<PpToken> &result = expansion.result;
  result.clear();
  Substitution(call, result).run();
  if (expansion.exhausted) return {};
  return {expansion.memory.copy(result.data(), result.size()), result.size()};
}

void substitution_stop()
{
  scratch.text.free();
  scratch.joined.free();
}

} // namespace tdm
