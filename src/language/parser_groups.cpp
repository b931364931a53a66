// The rules of groups, of output sections and of the places that groups are given.
#include "common/failures.h"
#include "language/parser.h"

using tdm::TokenSet;
using tdm::TokenSets;

namespace {

constexpr TokenSet section_member_start = {TDMTokenTypes::KEY_select, TDMTokenTypes::KEY_group,
                                           TDMTokenTypes::LCURLY};

/// A group may have several attribute words.
void add_attributes(TDMFileGroup &group, const tdm::AttributeSet &attributes)
{
  if (!group.attributes) group.attributes.emplace();
  group.attributes->merge(attributes);
}

void add_range(TDMFileGroupLocation &location, std::unique_ptr<TDMFileGroupLocationRange> range)
{
  if (!range->memoryName && !(range->low && range->high))
    throw new TDMFileSyntaxException("internal error with range in group address");
  location.ranges.push_back(std::move(range));
}

} // namespace

// section_statement: "section" string_value "(" section_property ("," section_property)* ")"
//                    (";" | "{" section_member* "}")
TDMFileStatementPtr TDMParser::section_statement()
{
  auto record = std::make_unique<TDMFileSectionCreationStatement>();
  keep(*record, "statement");
  match(KEY_section);
  record->sectionName = string_value(*record, "sectionName");
  parenthesized_list([&] { section_property(*record); });
  if (at(LCURLY)) {
    record->statement = section_block();
  } else {
    require_next({SEMICOLON});
    consume();
    record->statement = std::make_unique<TDMFileBlock>();
  }
  return record;
}

// section_property: attributes_value | fill_value | "size" "=" expression
//                 | "blocksize" "=" expression | "overflow" "=" string_value | tag_property
void TDMParser::section_property(TDMFileSectionCreationStatement &record)
{
  switch (LA(1)) {
  case KEY_attributes:
    keep(record, "attributes");
    record.attributes = attributes_value();
    break;
  case KEY_fill:
    record.fillSpec = fill_value();
    break;
  case KEY_size:
    consume();
    match(EQUALS);
    record.size = expression(record, "size");
    break;
  case KEY_blocksize:
    consume();
    match(EQUALS);
    record.blockSize = expression(record, "blockSize");
    break;
  case KEY_overflow:
    consume();
    match(EQUALS);
    record.overflowSectionName = string_value(record, "overflowSectionName");
    break;
  case KEY_tag:
    tag_property();
    break;
  default:
    no_viable_alternative();
  }
}

// section_block: "{" section_member* "}"
std::unique_ptr<TDMFileBlock> TDMParser::section_block()
{
  auto block = std::make_unique<TDMFileBlock>();
  match(LCURLY);
  while (at(section_member_start)) block->statements.push_back(section_member());
  match(RCURLY);
  return block;
}

// section_member: select_statement ";" | section_group | section_block
TDMFileStatementPtr TDMParser::section_member()
{
  switch (LA(1)) {
  case KEY_group:
    return section_group();
  case LCURLY: {
    const NestingGuard guard(*this);
    return section_block();
  }
  case KEY_select: {
    TDMFileStatementPtr select = select_statement();
    match(SEMICOLON);
    return select;
  }
  default:
    no_viable_alternative();
  }
}

// section_group: "group" [identifier]
//                ["(" section_group_property ("," section_group_property)* ")"] section_member
TDMFileStatementPtr TDMParser::section_group()
{
  const NestingGuard guard(*this);
  auto group = std::make_unique<TDMFileGroup>();
  group_name(*group, section_member_start);
  optional_list(section_member_start, [&] { section_group_property(*group); });
  keep(*group, "statement");
  if (at(LCURLY))
    group->statement = section_block(); // no nesting of its own
  else
    group->statement = section_member();
  return group;
}

// section_group_property: alignment_property | attributes_value | "load_addr" | tag_property
void TDMParser::section_group_property(TDMFileGroup &group)
{
  switch (LA(1)) {
  case KEY_align:
    alignment_property(group);
    break;
  case KEY_attributes:
    keep(group, "attributes");
    add_attributes(group, attributes_value());
    break;
  case KEY_load_addr:
    group_flag(group, "loadTimeGroup", group.loadTimeGroup);
    break;
  case KEY_tag:
    tag_property();
    break;
  default:
    no_viable_alternative();
  }
}

// alignment_property: "align" "=" expression
void TDMParser::alignment_property(TDMFileGroup &group)
{
  match(KEY_align);
  match(EQUALS);
  group.alignment = expression(group, "alignment");
}

// group_statement: "group" [identifier] ["(" group_property ("," group_property)* ")"] statement
TDMFileStatementPtr TDMParser::group_statement()
{
  const NestingGuard guard(*this);
  auto group = std::make_unique<TDMFileGroup>();
  group_name(*group, TokenSets::statement_start);
  optional_list(TokenSets::statement_start, [&] { group_property(*group); });
  keep(*group, "statement");
  group->statement = nested_statement();
  return group;
}

// "group" [identifier]
void TDMParser::group_name(TDMFileGroup &group, const TokenSet &body_start)
{
  keep(group, "group");
  match(KEY_group);
  if (at(TokenSets::identifier_start))
    group.name = identifier();
  else
    require_next(body_start | TokenSet{LPAREN});
}

// group_property: "contiguous" | "clustered" | "ordered" | "overlay" | "copy" | "nocopy"
//               | alignment_property | attributes_value | "load_addr" ["=" group_location]
//               | "run_addr" "=" group_location | "create_section" string_value
//               | "allow_cross_references" | fill_value | "page" ["=" expression]
//               | "page_size" "=" expression [page_ranges] | "priority" "=" number
//               | tag_property
void TDMParser::group_property(TDMFileGroup &group)
{
  switch (LA(1)) {
  case KEY_contiguous:
    group_flag(group, "contiguous", group.contiguous);
    break;
  case KEY_clustered:
    group_flag(group, "clustered", group.clustered);
    break;
  case KEY_ordered:
    group_flag(group, "ordered", group.ordered);
    break;
  case KEY_overlay:
    group_flag(group, "overlay", group.overlay);
    break;
  case KEY_copy:
    group_copy(group);
    break;
  case KEY_nocopy:
    group_nocopy(group);
    break;
  case KEY_load_addr:
    group_load_address(group);
    break;
  case KEY_run_addr:
    consume();
    match(EQUALS);
    keep(group, "runAddress");
    group.runAddress = group_location();
    break;
  case KEY_create_section:
    consume();
    group.outputSectionName = string_value(group, "outputSectionName");
    break;
  case KEY_allow_cross_references:
    group_flag(group, "crossReferences", group.crossReferences);
    break;
  case KEY_fill:
    group.fillSpec = fill_value();
    break;
  case KEY_page:
    group_page(group);
    break;
  case KEY_page_size:
    group_page_size(group);
    break;
  case KEY_priority:
    consume();
    keep(group, "priority");
    match(EQUALS);
    group.priority = tdm::low_word(number());
    break;
  case KEY_align:
    alignment_property(group);
    break;
  case KEY_attributes:
    keep(group, "attributes");
    add_attributes(group, attributes_value());
    break;
  case KEY_tag:
    tag_property();
    break;
  default:
    no_viable_alternative();
  }
}

// A word that stands for itself
void TDMParser::group_flag(TDMFileGroup &group, LocationKey key, bool &flag)
{
  keep(group, key);
  consume();
  flag = true;
}

// "copy"
void TDMParser::group_copy(TDMFileGroup &group)
{
  keep(group, "copy");
  const TDMSourceLocation &place = group.get_location("copy");
  if (group.nocopy)
    throw new TDMSyntaxException(place, "cannot set both the copy and nocopy attribute on a group");
  consume();
  group.copy = true;
}

// "nocopy"
void TDMParser::group_nocopy(TDMFileGroup &group)
{
  keep(group, "nocopy");
  const TDMSourceLocation &place = group.get_location("nocopy");
  if (group.copy)
    throw new TDMSyntaxException(place, "cannot set both the copy and nocopy attribute on a group");
  consume();
  group.nocopy = true;
}

// "load_addr" ["=" group_location]
void TDMParser::group_load_address(TDMFileGroup &group)
{
  group_flag(group, "loadTimeGroup", group.loadTimeGroup);
  if (!accept(EQUALS)) {
    require_next(TokenSets::list_end);
    return;
  }
  keep(group, "loadAddress");
  group.loadAddress = group_location();
}

// "page" ["=" expression]
void TDMParser::group_page(TDMFileGroup &group)
{
  group_flag(group, "paged", group.paged);
  if (accept(EQUALS))
    group.pageNum = expression(group, "pageNum");
  else
    require_next(TokenSets::list_end);
}

// "page_size" "=" expression [page_ranges]; the last one counts, with its ranges
void TDMParser::group_page_size(TDMFileGroup &group)
{
  match(KEY_page_size);
  match(EQUALS);
  group.pageAlign = expression(group, "pageAlign");
  group.pages.clear();
  optional_page_ranges(group.pages, TokenSets::list_end);
}

// group_location: expression | group_range more_ranges | memory_location
std::unique_ptr<TDMFileGroupLocation> TDMParser::group_location()
{
  auto location = std::make_unique<TDMFileGroupLocation>();
  if (at(LBRACK)) {
    keep(*location, "range");
    add_range(*location, group_range());
    more_ranges(*location);
  } else if (at(KEY_mem)) {
    memory_location(*location);
  } else {
    require_next(TokenSets::expression_start);
    location->address = expression(*location, "address");
  }
  return location;
}

// memory_location: memory_reference ["/" identifier]
//                  ( more_ranges
//                  | "[" expression "]"
//                  | "[" expression ".." [expression] "]" more_ranges )
void TDMParser::memory_location(TDMFileGroupLocation &location)
{
  keep(location, "memoryReference");
  auto range = mapped_memory();
  if (!at(LBRACK)) {
    require_next({RPAREN, COMMA, BAR});
    add_range(location, std::move(range));
    more_ranges(location);
    return;
  }
  consume();
  tdm::ExpressionPtr low = expression(location, "address");
  if (accept(RBRACK)) {
    location.memoryName = range->memoryName;
    location.mappingName = range->mappingName;
    location.address = std::move(low);
    return;
  }
  require_next({KEY_RANGE});
  range->low = std::move(low);
  rest_of_memory_range(*range);
  add_range(location, std::move(range));
  more_ranges(location);
}

// memory_reference ["/" identifier]
std::unique_ptr<TDMFileGroupLocationRange> TDMParser::mapped_memory()
{
  auto range = std::make_unique<TDMFileGroupLocationRange>();
  range->memoryName = memory_reference();
  if (accept(DIV))
    range->mappingName = identifier();
  else
    require_next({LBRACK, RPAREN, COMMA, BAR});
  return range;
}

// ".." [expression] "]"
void TDMParser::rest_of_memory_range(TDMFileGroupLocationRange &range)
{
  match(KEY_RANGE);
  if (at(TokenSets::expression_start))
    range.high = expression();
  else
    require_next({RBRACK});
  match(RBRACK);
}

// more_ranges: ("|" (group_range | group_memory_range))*
void TDMParser::more_ranges(TDMFileGroupLocation &location)
{
  while (accept(BAR)) {
    if (at(LBRACK)) {
      add_range(location, group_range());
    } else {
      require_next({KEY_mem});
      add_range(location, group_memory_range());
    }
  }
}

// group_range: "[" expression ".." expression "]"
std::unique_ptr<TDMFileGroupLocationRange> TDMParser::group_range()
{
  auto range = std::make_unique<TDMFileGroupLocationRange>();
  match(LBRACK);
  range->low = expression();
  match(KEY_RANGE);
  range->high = expression();
  match(RBRACK);
  return range;
}

// group_memory_range: memory_reference ["/" identifier] ["[" expression ".." [expression] "]"]
std::unique_ptr<TDMFileGroupLocationRange> TDMParser::group_memory_range()
{
  auto range = mapped_memory();
  if (accept(LBRACK)) {
    range->low = expression();
    rest_of_memory_range(*range);
  } else {
    require_next({RPAREN, COMMA, BAR});
  }
  return range;
}
