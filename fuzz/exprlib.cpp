// Exprlib: the input is a program for a stack of trees. All kinds of nodes are made, shared,
// folded, printed and given back, in contexts of several value sizes, with variables that get their
// values late. What is open and shared is walked along all of its paths, by design: a tree that
// would be too long when written out isn't built.
#include "expressions/exprlib/exprlib.h"

#include "target.h"

namespace {

constexpr std::uint32_t value_sizes[] = {1, 2, 4, 8, 8, 8, 16, 33};

class Machine {
public:
  explicit Machine(fuzz::Bytes &bytes) : bytes_(bytes)
  {
    const auto size = value_sizes[bytes_.pick(0, 7)];
    fuzz::require(exprlib_make_context(&context_, size, bytes_.flag() ? 0 : 40) == 0, "a context");
    const ExprlibUserOperator own[] = {{EXPRLIB_FIRST_USER_OPERATOR, first_operand, nullptr}};
    operators_[0] = own[0];
    context_->user_operators = operators_;
    context_->user_operator_count = 1;
    context_->relocation_evaluator = [](void *argument, ExprlibNode *child) {
      return argument != nullptr ? exprlib_eval(child) : 1;
    };
    context_->error_hook = [](std::uint32_t, ExprlibNode *) {};
  }

  void run()
  {
    while (!bytes_.empty() && stack_.size() < 200) step();
    for (const auto &row : rows_) exprlib_release(row.value);
    for (const Tree &tree : stack_) exprlib_release(tree.node);
    fuzz::require(context_->live_nodes == 0, "nothing is left");
    exprlib_end_context(context_);
  }

private:
  static constexpr int variables = 4;
  static constexpr std::size_t longest = 1000;

  /// A node with the number of nodes in its tree, those that are shared counted each time.
  struct Tree {
    ExprlibNode *node;
    std::size_t nodes;
  };

  /// The caller's operator: the value of its first operand.
  static int first_operand(ExprlibNode *node, void *)
  {
    ExprlibNode *child = exprlib_child(node, 0);
    if (child != nullptr) return exprlib_eval(child) != 0 ? 1 : exprlib_become(node, child);
    node->context->error = EXPRLIB_UNKNOWN_OPERAND;
    return 1;
  }

  void step()
  {
    const int what = bytes_.byte() % 16;
    if (what < 6)
      constant();
    else if (what < 11)
      apply();
    else if (what == 11)
      cast();
    else if (what == 12)
      bind();
    else if (what == 13)
      share();
    else
      evaluate();
  }

  /// The node is looked at after the call that gives `failed`.
  void push(int failed, ExprlibNode *const &node, std::size_t nodes = 1)
  {
    fuzz::require(failed == 0 || exprlib_error(context_) != 0, "a failure has a code");
    if (failed == 0) stack_.push_back({node, nodes});
  }

  void constant()
  {
    ExprlibNode *node = nullptr;
    std::uint8_t raw[16];
    const auto type = static_cast<ExprlibValueType>(bytes_.pick(0, 6));
    const int form = bytes_.pick(0, 7);
    const auto count = static_cast<std::size_t>(bytes_.pick(0, 16));
    if (form == 0)
      return push(exprlib_make_int32(context_, &node, static_cast<std::int32_t>(bytes_.number())),
                  node);
    if (form == 1) return push(exprlib_make_int64(context_, &node, bytes_.number()), node);
    if (form == 2) {
      auto *const owner = bytes_.flag() ? &table_ : nullptr;
      const auto index = static_cast<std::uint32_t>(bytes_.pick(0, variables));
      return push(exprlib_make_variable(context_, &node, type, owner, index), node);
    }
    for (std::size_t i = 0; i < count; ++i) raw[i] = bytes_.byte();
    if (type == EXPRLIB_DOUBLE) {
      double value = 0;
      static_assert(sizeof value <= sizeof raw);
      __builtin_memcpy(&value, raw, sizeof value);
      return push(exprlib_make_double(context_, &node,
                                      count < 8 ? static_cast<double>(bytes_.number()) : value),
                  node);
    }
    if (type == EXPRLIB_FRACT) return push(exprlib_make_fract(context_, &node, raw, count), node);
    if (type == EXPRLIB_STRING)
      return push(
          exprlib_make_string_constant(context_, &node, reinterpret_cast<char *>(raw), count),
          node);
    const auto width = static_cast<std::uint16_t>(bytes_.word(form == 3 ? 2 : 1));
    push(exprlib_make_integer(context_, &node, type, raw, count, width), node);
    if (node != nullptr && form == 4) node->relocatable = 1;
  }

  void apply()
  {
    const int code = bytes_.pick(0, EXPRLIB_LAST_NAMED + 1);
    const std::int32_t op =
        code > EXPRLIB_LAST_NAMED ? EXPRLIB_FIRST_USER_OPERATOR + bytes_.pick(0, 1) : code;
    // Codes without operands and payloads of another kind are not the caller's to make so.
    if (op == EXPRLIB_CONSTANT || op == EXPRLIB_VARIABLE || op == EXPRLIB_CAST ||
        op == EXPRLIB_RELOCATION)
      return;
    const bool one =
        op == EXPRLIB_NEGATE || op == EXPRLIB_NOT || op == EXPRLIB_COMPLEMENT || op == EXPRLIB_ABS;
    const bool three = op == EXPRLIB_CONDITIONAL || op == EXPRLIB_GUARD;
    std::size_t count = one ? 1 : three ? 3 : 2;
    if (bytes_.pick(0, 15) == 0) count = static_cast<std::size_t>(bytes_.pick(0, 4));
    if (stack_.size() < count) return;
    std::vector<ExprlibNode *> operands;
    std::size_t nodes = 1;
    for (std::size_t i = stack_.size() - count; i < stack_.size(); ++i) {
      operands.push_back(stack_[i].node);
      nodes += stack_[i].nodes;
    }
    if (nodes > longest) return;
    ExprlibNode *node = nullptr;
    const int failed = exprlib_make_operator_of(context_, &node, op,
                                                static_cast<std::uint32_t>(count), operands.data());
    for (ExprlibNode *operand : operands) exprlib_release(operand);
    stack_.resize(stack_.size() - count);
    push(failed, node, nodes);
  }

  void cast()
  {
    if (stack_.empty()) return;
    ExprlibNode *node = nullptr;
    const auto [child, nodes] = stack_.back();
    const auto type = static_cast<ExprlibValueType>(bytes_.pick(0, 6));
    const int failed =
        bytes_.pick(0, 3) == 0
            ? exprlib_make_relocation(context_, &node, bytes_.flag() ? this : nullptr, child)
            : exprlib_make_cast(context_, &node, type, child);
    stack_.pop_back();
    exprlib_release(child);
    push(failed, node, nodes + 1);
  }

  /// Gives a variable a value that has no variables in it, so that none is its own value.
  void bind()
  {
    ExprlibNode *node = nullptr;
    ExprlibSymbolRow &row = rows_[bytes_.pick(0, variables - 1)];
    if (row.value != nullptr || exprlib_make_int64(context_, &node, bytes_.number()) != 0) return;
    row.value = node;
  }

  void share()
  {
    if (stack_.empty()) return;
    const Tree tree = stack_[static_cast<std::size_t>(bytes_.byte()) % stack_.size()];
    exprlib_retain(tree.node);
    stack_.push_back(tree);
  }

  static std::string printed(ExprlibNode *node)
  {
    std::string text;
    exprlib_print(
        node,
        [](const char *piece, std::size_t length, void *closure) {
          auto &out = *static_cast<std::string *>(closure);
          if (out.size() < 1000) out.append(piece, length);
        },
        &text);
    return text;
  }

  void evaluate()
  {
    if (stack_.empty()) return;
    ExprlibNode *node = stack_.back().node;
    const std::string before = printed(node);
    fuzz::require(printed(node) == before, "printing changes nothing");
    const int failed = exprlib_eval(node);
    fuzz::require(failed == 0 || exprlib_error(context_) != 0, "a failure has a code");
    (void)exprlib_is_negative(node);
    (void)exprlib_is_zero(node);
    if (failed != 0) return;
    const std::string after = printed(node);
    // A condition may leave what fails by itself, a variable without a value for one.
    if (exprlib_eval(node) == 0)
      fuzz::require(printed(node) == after, "what was folded stays what it is", before);
    else
      fuzz::require(exprlib_error(context_) != 0, "a failure has a code", before);
  }

  fuzz::Bytes &bytes_;
  ExprlibContext *context_ = nullptr;
  ExprlibUserOperator operators_[1] = {};
  ExprlibSymbolRow rows_[variables] = {};
  ExprlibSymbolTable table_ = {rows_, variables};
  std::vector<Tree> stack_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
  fuzz::Bytes bytes(data, size);
  Machine(bytes).run();
  return 0;
}
