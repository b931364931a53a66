// Evaluates and renders the fill of a memory, and folds it in a context of the client's own.
#include "client.h"

namespace {

/// The CRC-32 of the eight bytes "12345678", as zlib has it too.
constexpr std::int64_t crc = 0x9ae0daaf;

/// An expression of the client's own: the library takes it for a leaf.
class Counter final : public TDMExpression {
public:
  explicit Counter(int &calls) : calls_(calls) {}
  std::int64_t compute(TDMExpressionEnv *) override { return ++calls_; }
  ExprlibNode *to_exprlib(TDMExpressionEnv *env) override
  {
    return static_cast<Linker *>(env)->number(calls_);
  }
  std::unique_ptr<TDMExpression> clone() const override
  {
    return std::make_unique<Counter>(calls_);
  }

private:
  int &calls_;
};

std::string printed(ExprlibNode *node)
{
  std::string text;
  exprlib_print(
      node,
      [](const char *piece, size_t length, void *closure) {
        static_cast<std::string *>(closure)->append(piece, length);
      },
      &text);
  return text;
}

/// Folds the expression's tree to a number.
std::int64_t folded(TDMExpression &expression, Linker &linker)
{
  ExprlibNode *node = expression.to_exprlib(&linker);
  CHECK(node != nullptr && exprlib_eval(node) == 0 && node->op == EXPRLIB_CONSTANT);
  const std::int64_t value = exprlib_int64(node);
  exprlib_release(node);
  return value;
}

void test_open_symbol(TDMExpression &expression, Linker &linker)
{
  CHECK(expression.refers_to_any({"open"}) && !expression.refers_to_any({".text"}));
  ExprlibNode *node = expression.to_exprlib(&linker);
  CHECK(exprlib_eval(node) == 0 && node->op == EXPRLIB_SHIFT_LEFT);
  CHECK(printed(node) == "($0 << 4)");
  linker.open.value = linker.number(0x123);
  CHECK(exprlib_eval(node) == 0 && node->op == EXPRLIB_CONSTANT && exprlib_int64(node) == 0x1230);
  exprlib_release(node);
}

/// A tree of the library's classes around one of the client's.
void test_own_expression(Linker &linker)
{
  int calls = 0;
  TDMBinaryApplication sum(TDM_BINARY_ADD, std::make_unique<TDMNumber>(40),
                           std::make_unique<Counter>(calls));
  CHECK(sum.value(&linker) == 41 && sum.value(&linker) == 41 && calls == 1);
  CHECK(sum.clone()->value(&linker) == 42 && folded(sum, linker) == 42);
  sum.forget();
  CHECK(sum.value(&linker) == 43);
  CHECK(dynamic_cast<TDMNumber *>(&sum.left()) != nullptr);
  CHECK(dynamic_cast<Counter *>(&sum.right()) != nullptr);
}

/// One failure caught by its class, one by the root of the family.
void test_data_failures(TDMExpression &checksum, Linker &linker)
{
  checksum.forget();
  try {
    linker.data_available = false;
    checksum.value(&linker);
    CHECK(!"data needed");
  } catch (TDMDataNeededForExpressionException *failure) {
    CHECK(failure->text().find("can only be used in struct statements") != std::string::npos);
    delete failure;
  }
  linker.data_available = true;
  linker.bytes.clear();
  try {
    checksum.value(&linker);
    CHECK(!"data incomplete");
  } catch (TDMFileException *failure) {
    CHECK(failure->text().find("not every location is filled") != std::string::npos);
    delete failure;
  }
}

} // namespace

void test_expressions(tdm_spec *spec)
{
  tdm_memory *memory = tdm_processor_get_memory(tdm_spec_get_processor(spec, "cpu1"), "cpu1:rom1");
  CHECK(memory != nullptr);
  TDMFillSpec *fill = tdm_memory_get_fillspec(memory);
  CHECK(fill != nullptr && fill->values.size() == 5 && fill->alignment->value() == 4);
  const auto &values = fill->values;

  Linker linker;
  CHECK(values[0]->value(&linker) == 0x1002 && folded(*values[0], linker) == 0x1002);
  CHECK(values[1]->value(&linker) == 72 && folded(*values[1], linker) == 72);
  CHECK(values[2]->value(&linker) == crc && values[2]->to_exprlib(&linker) == nullptr);
  CHECK(values[4]->value(&linker) == 1);
  TDMExpression::DataRanges ranges;
  values[2]->collect_data_ranges(&linker, ranges);
  CHECK(ranges == TDMExpression::DataRanges({{0x100, 0x108}}));
  test_open_symbol(*values[3], linker);
  test_own_expression(linker);
  test_data_failures(*values[2], linker);
}
