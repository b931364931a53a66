// Builds vector tables, and enters the names that they mention.
#include "common/failures.h"
#include "common/make_object.h"
#include "expressions/applications.h"
#include "language/table_records.h"
#include "layout/layout_builder.h"
#include "layout/memory_routes.h"
#include "layout/record_values.h"
#include "layout/section_names.h"

namespace tdm {

namespace {

class VectorTableBuilder {
public:
  VectorTableBuilder(const TDMFileVectorTable &record, const LayoutContext &context)
      : record_(record), context_(context), table_(make_object<TDMVectorTable>())
  {
  }

  std::unique_ptr<TDMVectorTable> build()
  {
    copy_fields();
    if (record_.memoryName) map_run_address();
    if (record_.templateName) append(context_.names.referenced_names, table_->template_name);
    require_items();
    if (names_symbol(table_->default_value)) require_symbol(table_->default_value->symbol);
    table_->vectors.reserve(record_.vectors.size());
    for (const auto &vector : record_.vectors) add_vector(*vector);
    require_numbered_symbols();
    return std::move(table_);
  }

private:
  void copy_fields()
  {
    table_->sourceLocations = record_.sourceLocations;
    table_->name = record_.name.value_or("");
    table_->vector_size = translate(record_.vectorSize, "vector_size");
    table_->size = translate(record_.size, "size");
    table_->id_symbol_prefix = record_.idSymbolPrefix;
    table_->run_address = translate(record_.address, "run_address");
    table_->template_name = record_.templateName.value_or("");
    table_->template_symbol_name = record_.templateSymbolName.value_or("");
    table_->vector_name_prefix = record_.vectorNamePrefix;
    table_->default_value =
        make_value(record_.defaultValue.get(), record_.sourceLocations, "default_value");
    table_->default_inline = record_.defaultInline;
    table_->copy = record_.copy;
  }

  /// An address in a memory becomes the address in the space that reaches it.
  void map_run_address()
  {
    const TDMSourceLocation place = place_of(record_, "run_address");
    const LayoutMemory memory = find_memory(context_, *record_.memoryName,
                                            "memory reference for a vector table entry", place);
    const AddressValue position(table_->run_address->value(), 0, memory.object->get_mau_size());
    const auto routes = memory_to_space(context_.space, *memory.object, nullptr, position);
    if (routes.empty())
      throw new TDMSyntaxException(place,
                                   "absolute location in memory for group does not map to space " +
                                       full_name(context_.space));
    table_->run_address = make_object<TDMNumber>(routes.front().value);
  }

  void require_items() const
  {
    if (!record_.name) fail("no name specified for vector table");
    if (table_->vector_size == nullptr) fail("no vector size specified for vector table");
    if (table_->size == nullptr) fail("no size specified for vector table");
    if (!record_.templateName) fail("no template section name specified for vector table");
    if (!record_.templateSymbolName) fail("no template target symbol specified for vector table");
  }

  [[noreturn]] void fail(const std::string &text) const
  {
    throw new TDMSyntaxException(place_of(record_, "name"), text);
  }

  void add_vector(const TDMFileVector &record)
  {
    auto vector = make_object<TDMVector>();
    vector->sourceLocations = record.sourceLocations;
    vector->ids.reserve(record.ids.ranges().size());
    for (const auto &[low, high] : record.ids.ranges()) vector->ids.emplace_back(low, high);
    vector->value = make_value(record.value.get(), record.sourceLocations, "value");
    vector->optional = record.optional;
    if (names_symbol(vector->value)) {
      if (vector->optional)
        append(context_.names.optional_symbols, vector->value->symbol);
      else
        require_symbol(vector->value->symbol);
    }
    table_->vectors.push_back(std::move(vector));
  }

  /// `places` are those of the definition that has the value, under `key`.
  std::unique_ptr<TDMVectorValue> make_value(const TDMFileVectorValue *record,
                                             const SourceLocations &places, LocationKey key) const
  {
    if (record == nullptr) return nullptr;
    auto value = make_object<TDMVectorValue>();
    value->sourceLocations = record->sourceLocations;
    value->type = static_cast<TDMVectorValue::Type>(record->type);
    value->symbol = record->symbolName;
    if (!record->values.empty()) value->values.assign(record->values.begin(), record->values.end());
    if (record->loopOffset != nullptr) {
      const TDMSourceLocation *place = places.find(key);
      value->loop_offset = tdm_translate_expression(
          record->loopOffset.get(), context_.scope,
          value->location_or("loop_offset", place != nullptr ? *place : place_of(record_, "name")));
    }
    return value;
  }

  static bool names_symbol(const std::unique_ptr<TDMVectorValue> &value)
  {
    return value != nullptr && value->type == TDMVectorValue::symbol_value;
  }

  void require_symbol(Text symbol) { append(context_.names.required_symbols, {symbol}); }

  void require_numbered_symbols()
  {
    const int64_t size = table_->size->value();
    if (table_->id_symbol_prefix && size > 0)
      append(context_.names.required_symbols, {*table_->id_symbol_prefix, size});
  }

  std::unique_ptr<TDMExpression> translate(const ExpressionPtr &expression, LocationKey key) const
  {
    return expression_of(record_, key, expression.get(), context_.scope);
  }

  const TDMFileVectorTable &record_;
  const LayoutContext &context_;
  std::unique_ptr<TDMVectorTable> table_;
};

} // namespace

std::unique_ptr<TDMVectorTable> build_vector_table(const TDMFileVectorTable &record,
                                                   const LayoutContext &context)
{
  return VectorTableBuilder(record, context).build();
}

} // namespace tdm
