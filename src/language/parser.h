// The parser of the language: recursive descent with two tokens of look-ahead, on the parser of
// the ANTLR 2 runtime. One function per rule, in the families below; the production stands above
// each function.
//
// There is no recovery: a rule matches or throws, and the first failure ends the parse. Failures
// are of two kinds. Text that doesn't fit the grammar is an exception of the runtime: a fixed token
// that doesn't come is a MismatchedTokenException; where alternatives or an optional item had a
// choice and the next token fits none of them, nor what may follow, it is a NoViableAltException.
// A list of "any number of" items just ends at a token that starts none. Text that fits but breaks
// a rule is a TDMFileSyntaxException; the parse driver reports it at the next token.
#pragma once

#include <antlr/LLkParser.hpp>

#include "language/lexer.h"
#include "language/records.h"
#include "language/token_sets.h"

namespace tdm {

/// Puts a new record at the end of a list.
template <typename Record> Record &append_new(tdm::RecordList<std::unique_ptr<Record>> &list)
{
  list.push_back(std::make_unique<Record>());
  return *list.back();
}

/// Where a field has 32 bits, a number is cut to its low ones.
inline std::int32_t low_word(std::int64_t value)
{
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value & 0xFFFFFFFF));
}

/// The name as messages end with it.
inline Text name_of(const std::optional<Text> &name)
{
  return name.value_or(Text());
}

} // namespace tdm

class TDMParser final : public antlr::LLkParser, public TDMTokenTypes {
public:
  explicit TDMParser(TDMLexer &lexer) : LLkParser(shared_state(lexer), 2), lexer_(lexer) {}

  /// target_file: all of a description.
  std::unique_ptr<TDMFileInterface> target_file();
  /// An expression that is all of the input but for a semicolon behind it.
  tdm::ExpressionPtr single_expression();

  // The window of two tokens that takes the place of the runtime's queue. Tokens are fetched when
  // they are looked at, not when the one before is consumed; `i` is 1 or 2.
  int LA(unsigned int i) override
  {
    while (held_ < i) fetch();
    return window_[first_ ^ (i - 1)].type;
  }
  antlr::RefToken LT(unsigned int i) override; ///< only failures need tokens of the runtime
  void consume() override
  {
    if (held_ == 0) fetch();
    first_ ^= 1;
    --held_;
  }
  void match(int type) override
  {
    if (LA(1) != type) mismatch(type);
    first_ ^= 1;
    --held_;
  }

  antlr::RefAST getAST() override { return antlr::nullAST; } // there are no trees
  const char *getTokenName(int type) const override { return tdm::token_names()[type]; }
  const char *const *getTokenNames() const override { return tdm::token_names(); }
  int getNumTokens() const override { return NUMBER_OF_TYPES; }

private:
  /// The runtime's state of a parser, as the runtime makes it for itself, but not lost if memory
  /// ends in between.
  static antlr::ParserSharedInputState shared_state(TDMLexer &lexer);

  /// Counts one level of nesting while it lives. Only nesting recurses, and each level takes its
  /// share of a stack that may be small.
  class NestingGuard {
  public:
    explicit NestingGuard(TDMParser &parser) : depth_(parser.depth_) { enter(); }
    ~NestingGuard() { --depth_; }
    NestingGuard(const NestingGuard &) = delete;
    NestingGuard &operator=(const NestingGuard &) = delete;

  private:
    void enter();
    int &depth_;
  };

  /// A left operand that waits with its operator for the right one.
  struct PendingOperand {
    std::int32_t op;
    int level;
    tdm::ExpressionPtr left;
  };

  // The next tokens.
  void fetch(); ///< one more
  [[nodiscard]] bool at(int type) { return LA(1) == type; }
  [[nodiscard]] bool at(const tdm::TokenSet &types) { return types.contains(LA(1)); }
  bool accept(int type)
  {
    if (!at(type)) return false;
    consume();
    return true;
  }
  [[noreturn]] void mismatch(int type);
  [[noreturn]] void no_viable_alternative();
  /// An optional item isn't there: what is there must be something that may follow it.
  void require_next(const tdm::TokenSet &following)
  {
    if (!at(following)) no_viable_alternative();
  }
  [[nodiscard]] const tdm::Lexeme &next_token()
  {
    if (held_ == 0) fetch();
    return window_[first_];
  }
  [[nodiscard]] const TDMSourceLocation &here() { return next_token().location; }
  [[nodiscard]] bool at_tag_list();

  // Places, taken together with their key.
  void keep(TDMFileObject &record, LocationKey key) { record.store_location(key, here()); }
  tdm::Text identifier(TDMFileObject &record, LocationKey key);
  tdm::Text string_value(TDMFileObject &record, LocationKey key);
  tdm::ExpressionPtr expression(TDMFileObject &record, LocationKey key);

  /// item ("," item)*
  template <typename Item> void comma_list(Item item)
  {
    do {
      item();
    } while (accept(COMMA));
  }

  /// "(" item ("," item)* ")"
  template <typename Item> void parenthesized_list(Item item)
  {
    match(LPAREN);
    comma_list(item);
    match(RPAREN);
  }

  /// A parenthesized list that may be absent; `following` is what can stand in its place.
  template <typename Item> void optional_list(const tdm::TokenSet &following, Item item)
  {
    if (at(LPAREN))
      parenthesized_list(item);
    else
      require_next(following);
  }

  // Names, numbers and tags (parser_frame.cpp).
  void definition(TDMFileInterface &result);
  tdm::Text identifier();
  tdm::Text string_value();
  std::int64_t number();
  std::int64_t plain_number();
  std::int64_t size_suffix();
  void tag_property();
  void tag_list();

  // Expressions (parser_expressions.cpp, parser_builtins.cpp).
  tdm::ExpressionPtr expression();
  tdm::ExpressionPtr logical_or();
  tdm::ExpressionPtr unary();
  tdm::ExpressionPtr primary();
  tdm::ExpressionPtr parenthesized();
  tdm::ExpressionPtr symbol_reference();
  tdm::ExpressionPtr number_literal();
  tdm::ExpressionPtr variable_reference();
  tdm::ExpressionPtr builtin_call();
  tdm::ExpressionPtr absolute_call();
  tdm::ExpressionPtr addressof_call();
  tdm::ExpressionPtr defined_call();
  tdm::ExpressionPtr exists_call();
  template <typename Record> tdm::ExpressionPtr choice_call(int keyword);
  tdm::ExpressionPtr sizeof_call();
  tdm::ExpressionPtr checksum_call();
  template <typename Record>
  void layout_object(Record &record, std::int32_t section, std::int32_t group, std::int32_t memory);
  tdm::Text memory_reference();
  tdm::Text memory_name();
  tdm::ExpressionList expression_list();
  tdm::FileRange range_value();

  // Memories, buses and mappings (parser_memory.cpp, parser_mapping.cpp).
  void memory_definition(TDMFileMemory &memory);
  void memory_property(TDMFileMemory &memory);
  void memory_type_property(TDMFileMemory &memory);
  void memory_mau(TDMFileMemory &memory);
  void memory_size(TDMFileMemory &memory);
  void memory_priority(TDMFileMemory &memory);
  void memory_exec_priority(TDMFileMemory &memory);
  int memory_type();
  std::unique_ptr<TDMFileFillSpec> fill_value();
  void fill_pattern(TDMFileFillSpec &fill);
  void bus_definition(TDMFileBus &bus);
  void bus_property(TDMFileBus &bus);
  /// A map_definition of a memory, bus or space.
  template <typename Owner> void append_mapping(Owner &owner)
  {
    keep(owner, "map");
    map_definition(tdm::append_new(owner.mappings));
  }
  void map_definition(TDMFileMapping &mapping);
  void map_property(TDMFileMapping &mapping);
  void map_destination_property(TDMFileMapping &mapping);
  tdm::Text map_destination(TDMFileMapping &mapping);
  void map_priority(TDMFileMapping &mapping);
  void map_exec_priority(TDMFileMapping &mapping);

  // Architectures, cores, derivatives and processors (parser_templates.cpp).
  void architecture_definition(TDMFileArchitecture &architecture);
  void architecture_item(TDMFileArchitecture &architecture);
  void extends(TDMFileObject &record, std::optional<tdm::Text> &base,
               tdm::ExpressionList &arguments);
  tdm::ExpressionList optional_arguments(const tdm::TokenSet &following);
  tdm::FileParameters optional_parameters();
  void endianness_block(TDMFileArchitecture &architecture);
  std::int32_t endianness_value();
  tdm::FileParameters parameter_list();
  tdm::FileParameter parameter();
  void core_definition(TDMFileCore &core);
  void core_property(TDMFileCore &core);
  void core_architecture(TDMFileCore &core);
  std::unique_ptr<TDMFileStartAddress> start_address_spec();
  void start_address_item(TDMFileStartAddress &start);
  void derivative_definition(TDMFileDerivative &derivative);
  void derivative_item(TDMFileDerivative &derivative);
  void processor_definition(TDMFileCPU &processor);
  void derivative_reference(TDMFileCPU &processor);

  // Spaces (parser_space.cpp).
  void space_definition(TDMFileSpace &space);
  void space_item(TDMFileSpace &space);
  void space_property(TDMFileSpace &space);
  void space_mau(TDMFileSpace &space);
  void space_id(TDMFileSpace &space);
  void space_alignment(TDMFileSpace &space);
  void space_page_size(TDMFileSpace &space);
  void optional_page_ranges(tdm::RecordList<tdm::FileRange> &pages, const tdm::TokenSet &following);
  void space_literal_space(TDMFileSpace &space);
  void space_copy_table(TDMFileSpace &space);
  void space_direct_init(TDMFileSpace &space);
  tdm::FileRange reserved_range();
  int direction_value();
  tdm::ExpressionPtr align_value();
  void stack_definition(TDMFileStackDef &stack);
  void heap_definition(TDMFileHeapDef &heap);
  void stack_heap_property(TDMFileStackOrHeapDef &definition);

  // Section setups (parser_setup.cpp).
  void section_setup_definition(TDMFileSectionSetup &setup);
  void section_setup_item(TDMFileSectionSetup &setup);
  void space_path(TDMFileObject &record, std::optional<tdm::Text> &cpu,
                  std::optional<tdm::Text> &core, std::optional<tdm::Text> &space);
  void optional_name(TDMFileObject &record, LocationKey key, std::optional<tdm::Text> &name);
  tdm::Text space_name_list();
  std::unique_ptr<TDMFileCopySubTableSpace> space_reference();
  void prohibit_references(TDMFileSectionSetup &setup);
  void input_modification(TDMFileInputModification &modification);
  void input_property(TDMFileInputModification &modification);

  // Copy tables, direct init and banks (parser_tables.cpp).
  void copytable_definition(TDMFileCopyTable &table);
  void copytable_property(TDMFileCopyTable &table);
  void subtable(TDMFileCopySubTable &table);
  void subtable_property(TDMFileCopySubTable &table);
  void direct_init_definition(TDMFileDirectInit &init);
  void direct_init_property(TDMFileDirectInit &init);
  void destination(TDMFileObject &record, LocationKey key, std::optional<tdm::Text> &single,
                   tdm::RecordList<tdm::FileDestination> &pairs);
  void bank_definition(TDMFileBankDef &bank);
  void bank_property(TDMFileBankDef &bank);
  void stub_property(TDMFileBankDef &bank);
  void stub_argument(TDMFileBankDef &bank);
  void switch_property(TDMFileBankDef &bank);
  void bank_string(int word, TDMFileBankDef &bank, LocationKey key,
                   std::optional<tdm::Text> &field);

  // Vector tables (parser_vectors.cpp).
  std::unique_ptr<TDMFileVectorTable> vector_table_definition();
  void vector_table_property(TDMFileVectorTable &table);
  void vector_table_size(TDMFileVectorTable &table);
  void vector_table_fill(TDMFileVectorTable &table);
  void vector_table_address(TDMFileVectorTable &table);
  void vector_table_template(TDMFileVectorTable &table);
  void vector_table_template_symbol(TDMFileVectorTable &table);
  void vector_table_vector_prefix(TDMFileVectorTable &table);
  std::unique_ptr<TDMFileVector> vector_definition();
  void vector_property(TDMFileVector &vector);
  void vector_id_spec(TDMFileVector &vector);
  void vector_id_range(TDMFileVector &vector);
  void vector_fill(TDMFileVector &vector);
  std::unique_ptr<TDMFileVectorValue> vector_value();
  void vector_loop_offset(TDMFileVectorValue &value);

  // Section layouts and their simple statements (parser_layout.cpp).
  /// The name of the enclosing space is for the message of a layout without a target.
  void section_layout_definition(TDMFileSectionLayout &layout, tdm::Text enclosing_space);
  void layout_attribute(TDMFileSectionLayout &layout, tdm::Text enclosing_space);
  std::unique_ptr<TDMFileBlock> statement_block();
  TDMFileStatementPtr statement();
  TDMFileStatementPtr nested_statement();
  TDMFileStatementPtr simple_statement();
  TDMFileStatementPtr assignment();
  std::int32_t assignment_operator();
  TDMFileStatementPtr if_statement();
  [[nodiscard]] bool at_else_statement();
  TDMFileStatementPtr table_statement();
  TDMFileStatementPtr stack_statement();
  TDMFileStatementPtr heap_statement();
  void size_or_tag(TDMFileObject &record, tdm::ExpressionPtr &size);
  TDMFileStatementPtr reserved_statement();
  void reserved_property(TDMFileReservedStatement &record);
  void alloc_allowed(TDMFileReservedStatement &record);
  tdm::AttributeSet attributes_value();
  tdm::AttributeSet attribute_word();
  TDMFileStatementPtr memcopy_statement();
  void memcopy_property(TDMFileMemCopyStatement &record);
  TDMFileStatementPtr struct_statement();
  TDMFileStructStatement::Member struct_member();
  std::unique_ptr<TDMFileSelectSectionStatement> select_statement();
  void select_property(TDMFileSelectSectionStatement &record);
  std::unique_ptr<TDMFileSelectAttrs> select_attributes();
  void attribute_change(TDMFileSelectAttrs &attributes);

  // Output sections, groups and their places (parser_groups.cpp).
  TDMFileStatementPtr section_statement();
  void section_property(TDMFileSectionCreationStatement &record);
  std::unique_ptr<TDMFileBlock> section_block();
  TDMFileStatementPtr section_member();
  TDMFileStatementPtr section_group();
  void section_group_property(TDMFileGroup &group);
  void alignment_property(TDMFileGroup &group);
  TDMFileStatementPtr group_statement();
  void group_name(TDMFileGroup &group, const tdm::TokenSet &body_start);
  void group_property(TDMFileGroup &group);
  void group_flag(TDMFileGroup &group, LocationKey key, bool &flag);
  void group_copy(TDMFileGroup &group);
  void group_nocopy(TDMFileGroup &group);
  void group_load_address(TDMFileGroup &group);
  void group_page(TDMFileGroup &group);
  void group_page_size(TDMFileGroup &group);
  std::unique_ptr<TDMFileGroupLocation> group_location();
  void memory_location(TDMFileGroupLocation &location);
  std::unique_ptr<TDMFileGroupLocationRange> mapped_memory();
  void rest_of_memory_range(TDMFileGroupLocationRange &range);
  void more_ranges(TDMFileGroupLocation &location);
  std::unique_ptr<TDMFileGroupLocationRange> group_range();
  std::unique_ptr<TDMFileGroupLocationRange> group_memory_range();

  TDMLexer &lexer_;
  tdm::Lexeme window_[2];
  unsigned int first_ = 0; ///< which one of the window comes first
  unsigned int held_ = 0;
  int depth_ = 0;
  std::vector<PendingOperand> pending_; ///< shared by all levels of nesting
};
