// One function per record; a field that the text left out is left out here too.
#include "record_dump.h"

namespace {

std::string places(const SourceLocations &locations)
{
  std::string text;
  for (const auto &[key, place] : locations.entries())
    text += (text.empty() ? "<" : " ") + std::string(key.text()) + '@' +
            std::to_string(place.line) + '/' + std::to_string(place.column);
  return text.empty() ? text : text + '>';
}

std::string dump(const TDMFileFillSpec &fill);
std::string dump(const TDMFileMapping &mapping);
std::string dump(const TDMFileBus &bus);
std::string dump(const TDMFileMemory &memory);
std::string dump(const TDMFileStartAddress &start);
std::string dump(const TDMFileCopySubTableSpace &space);
std::string dump(const TDMFileStackOrHeapDef &definition);
std::string dump(const TDMFileVectorValue &value);
std::string dump(const TDMFileVector &vector);
std::string dump(const TDMFileVectorTable &table);
std::string dump(const TDMFileCopySubTable &table);
std::string dump(const TDMFileCopyTable &table);
std::string dump(const TDMFileDirectInit &init);
std::string dump(const TDMFileBankDef &bank);
std::string dump(const TDMFileSelector &selector);
std::string dump(const TDMFileSectionStatement &statement);
std::string dump(const TDMFileGroupLocation &location);
std::string dump(const TDMFileGroupLocationRange &range);
std::string dump(const TDMFileSectionLayout &layout);
std::string dump(const TDMFileSectionSetup &setup);
std::string dump(const TDMFileInputModification &modification);
std::string dump(const TDMFileSpace &space);
std::string dump(const TDMFileArchitecture &architecture);
std::string dump(const TDMFileCore &core);
std::string dump(const TDMFileDerivative &derivative);
std::string dump(const TDMFileCPU &processor);

std::string dump(std::string_view text)
{
  return std::string(text);
}
std::string dump(std::int32_t number)
{
  return std::to_string(number);
}
std::string dump(std::int64_t number)
{
  return std::to_string(number);
}

std::string dump(const tdm::FileRange &range)
{
  return dump(*range.low) + ".." + (range.high ? dump(*range.high) : "");
}

std::string dump(const tdm::FileParameter &parameter)
{
  return parameter.name + (parameter.defaultValue ? "=" + dump(*parameter.defaultValue) : "");
}

std::string dump(const tdm::FileDestination &pair)
{
  return pair.source.str() + '>' + pair.destination;
}

std::string dump(const TDMFileStructStatement::Member &member)
{
  return dump(*member.value) + ':' + std::to_string(member.size);
}

std::string dump(const tdm::AttributeSet &set)
{
  std::string letters;
  const bool flags[] = {set.r, set.w, set.x, set.i, set.s, set.b, set.p};
  for (std::size_t i = 0; i < std::size(flags); ++i)
    if (flags[i]) letters += "rwxisbp"[i];
  return '{' + letters + '}';
}

std::string dump(const tdm::VectorIds &ids)
{
  std::string text;
  for (const auto &[low, high] : ids.ranges())
    text += (text.empty() ? "" : ",") + std::to_string(low) +
            (low == high ? "" : ".." + std::to_string(high));
  return text;
}

/// A number that counts as left out if it is this one.
std::optional<std::int64_t> unless(std::int64_t value, std::int64_t unset)
{
  return value != unset ? std::optional(value) : std::nullopt;
}

std::string element(const auto &value)
{
  if constexpr (requires { *value; })
    return dump(*value);
  else
    return dump(value);
}

// Of one field: what stands behind its name, or nothing if the text left it out.
template <typename T, typename Allocator>
std::optional<std::string> shown(const std::vector<T, Allocator> &values)
{
  std::string text;
  for (const T &value : values) text += (text.empty() ? "" : ", ") + element(value);
  return values.empty() ? std::nullopt : std::optional("=[" + text + ']');
}
std::optional<std::string> shown(bool flag)
{
  return flag ? std::optional<std::string>("") : std::nullopt;
}
std::optional<std::string> shown(std::string_view text)
{
  return text.empty() ? std::string() : '=' + std::string(text);
}
template <typename Pointer>
requires requires(const Pointer &p)
{
  *p;
}
std::optional<std::string> shown(const Pointer &value)
{
  return value ? shown(dump(*value)) : std::nullopt;
}

/// The word of a record, its fields by name and value, and its places.
template <typename... Fields>
std::string line(const char *word, const SourceLocations &locations, const Fields &...fields)
{
  std::string text = std::string(word) + '(';
  const auto put = [&](const auto &self, const char *name, const auto &value, const auto &...rest) {
    if (const auto field = shown(value)) text += (text.back() == '(' ? "" : " ") + (name + *field);
    if constexpr (sizeof...(rest) > 0) self(self, rest...);
  };
  if constexpr (sizeof...(fields) > 0) put(put, fields...);
  return text + ')' + places(locations);
}

std::string dump(const TDMFileFillSpec &fill)
{
  return line("fill", fill.sourceLocations, "values", fill.values, "alignment", fill.alignment);
}

std::string dump(const TDMFileMapping &mapping)
{
  return line("map", mapping.sourceLocations, "name", mapping.name, "kind",
              unless(mapping.destinationKind, 0), "destination", mapping.destination, "dest_dbits",
              mapping.connectedDestinationLines, "dest_offset", mapping.destinationOffset, "size",
              mapping.size, "src_dbits", mapping.connectedSourceLines, "src_offset",
              mapping.sourceOffset, "bank", unless(mapping.bankNum, -1), "dest_bank",
              unless(mapping.destinationBankNum, -1), "reserved", mapping.reserved, "priority",
              unless(mapping.priority, 0), "exec_priority", unless(mapping.execPriority, -1));
}

std::string dump(const TDMFileBus &bus)
{
  return line("bus", bus.sourceLocations, "name", bus.name, "mau", bus.mauSize, "width",
              bus.busWidth, "address_width", bus.busAddressWidth, "wishbone", bus.wishbone,
              "mappings", bus.mappings);
}

std::string dump(const TDMFileMemory &memory)
{
  const tdm::FileMemoryHardware none;
  const tdm::FileMemoryHardware &hardware = memory.hardware != nullptr ? *memory.hardware : none;
  return line("memory", memory.sourceLocations, "name", memory.name, "type",
              unless(memory.memtype, 0), "reserved", memory.reserved, "mau", memory.mauSize, "size",
              memory.size, "priority", unless(memory.priority, -1), "exec_priority",
              unless(memory.execPriority, -1), "fill", memory.fillSpec, "write_unit",
              hardware.writeUnit, "write_mode", hardware.writeMode, "setuptime", hardware.setupTime,
              "holdtime", hardware.holdTime, "cycles", hardware.cycles, "area", hardware.area,
              "read_ports", hardware.readPorts, "write_ports", hardware.writePorts,
              "readwrite_ports", hardware.readWritePorts, "mappings", memory.mappings);
}

std::string dump(const TDMFileStartAddress &start)
{
  return line("start", start.sourceLocations, "symbol", start.symbolName, "value", start.value,
              "bank", unless(start.bank, -1));
}

std::string dump(const TDMFileCopySubTableSpace &space)
{
  return line("space", space.sourceLocations, "cpu", space.cpuName, "core", space.coreName, "name",
              space.spaceName);
}

std::string dump(const TDMFileStackOrHeapDef &definition)
{
  static const tdm::ExpressionPtr no_id;
  const auto *stack = dynamic_cast<const TDMFileStackDef *>(&definition);
  return line(stack ? "stack" : "heap", definition.sourceLocations, "name", definition.name,
              "min_size", definition.minimalSize, "grows", unless(definition.growDirection, 0),
              "align", definition.alignment, "fixed", definition.fixed, "id",
              stack ? stack->id : no_id);
}

std::string dump(const TDMFileVectorValue &value)
{
  return line("value", value.sourceLocations, "type", unless(value.type, 0), "symbol",
              value.symbolName.empty() ? std::nullopt : std::optional(value.symbolName), "values",
              value.values, "offset", value.loopOffset);
}

std::string dump(const TDMFileVector &vector)
{
  return line("vector", vector.sourceLocations, "ids",
              std::make_unique<std::string>(dump(vector.ids)), "value", vector.value, "optional",
              vector.optional);
}

std::string dump(const TDMFileVectorTable &table)
{
  return line("vector_table", table.sourceLocations, "name", table.name, "vector_size",
              table.vectorSize, "size", table.size, "id_symbol_prefix", table.idSymbolPrefix,
              "address", table.address, "memory", table.memoryName, "template", table.templateName,
              "template_symbol", table.templateSymbolName, "vector_prefix", table.vectorNamePrefix,
              "no_inline", !table.defaultInline, "copy", table.copy, "default", table.defaultValue,
              "vectors", table.vectors);
}

std::string dump(const TDMFileCopySubTable &table)
{
  return line("table", table.sourceLocations, "symbol", table.symbol, "spaces", table.spaces);
}

std::string dump(const TDMFileCopyTable &table)
{
  return line("copytable", table.sourceLocations, "align", table.alignment, "copy_unit",
              table.copyUnit, "dest", table.defaultCopyDestination, "dests", table.destinations,
              "page", table.pageRestrictROMCopies, "tables", table.subTables);
}

std::string dump(const TDMFileDirectInit &init)
{
  return line("direct_init", init.sourceLocations, "align", init.alignment, "dest",
              init.defaultDestination, "dests", init.destinations);
}

std::string dump(const TDMFileBankDef &bank)
{
  return line("bank", bank.sourceLocations, "stub_template", bank.stubTemplate, "stub_bank",
              bank.stubArgBank, "stub_address", bank.stubArgAddress, "stub_switch",
              bank.stubArgSwitch, "stub_prefix", bank.stubPrefix, "switch_template",
              bank.switchTemplate, "switch_bank", bank.switchArgBank, "switch_prefix",
              bank.switchPrefix, "space", bank.spaceName);
}

std::string dump(const TDMFileSelector &selector)
{
  const auto &attributes = static_cast<const TDMFileSelectAttrs &>(selector);
  return '+' + dump(attributes.attributesSet) + '-' + dump(attributes.attributesNotSet);
}

std::string dump(const TDMFileGroupLocationRange &range)
{
  return line("range", {}, "memory", range.memoryName, "mapping", range.mappingName, "low",
              range.low, "high", range.high);
}

std::string dump(const TDMFileGroupLocation &location)
{
  return line("location", location.sourceLocations, "address", location.address, "memory",
              location.memoryName, "mapping", location.mappingName, "ranges", location.ranges);
}

std::string dump_group(const TDMFileGroup &group)
{
  return line("group", group.sourceLocations, "name", group.name, "contiguous", group.contiguous,
              "clustered", group.clustered, "ordered", group.ordered, "overlay", group.overlay,
              "copy", group.copy, "nocopy", group.nocopy, "align", group.alignment, "attributes",
              group.attributes, "load_addr", group.loadTimeGroup, "load", group.loadAddress, "fill",
              group.fillSpec, "page", group.paged, "page_num", group.pageNum, "page_size",
              group.pageAlign, "pages", group.pages, "run", group.runAddress, "cross",
              group.crossReferences, "section", group.outputSectionName, "priority",
              unless(group.priority, 1), "statement", group.statement);
}

std::string dump_section(const TDMFileSectionCreationStatement &section)
{
  return line("section", section.sourceLocations, "name", section.sectionName, "overflow",
              section.overflowSectionName, "size", section.size, "blocksize", section.blockSize,
              "attributes", section.attributes, "fill", section.fillSpec, "statement",
              section.statement);
}

std::string dump_reserved(const TDMFileReservedStatement &reserved)
{
  return line("reserved", reserved.sourceLocations, "name", reserved.sectionName, "size",
              reserved.size, "attributes", reserved.attributes, "fill", reserved.fillSpec,
              "absolute", reserved.allowAllocAbsolute, "ranged", reserved.allowAllocRanged);
}

std::string dump(const TDMFileSectionStatement &statement)
{
  switch (statement.kind()) {
  case tdm::kStatementAssignment: {
    const auto &record = static_cast<const TDMFileAssignment &>(statement);
    return line("assign", record.sourceLocations, "symbol", record.symbolName, "op",
                unless(record.op, 0), "value", record.value);
  }
  case tdm::kStatementIf: {
    const auto &record = static_cast<const TDMFileIfStatement &>(statement);
    return line("if", record.sourceLocations, "condition", record.condition, "true",
                record.trueStatement, "false", record.falseStatement);
  }
  case tdm::kStatementSelect: {
    const auto &record = static_cast<const TDMFileSelectSectionStatement &>(statement);
    return line("select", record.sourceLocations, "name", record.sectionName, "ref_tree",
                record.referenceTree, "selectors", record.selectors);
  }
  case tdm::kStatementHeap: {
    const auto &record = static_cast<const TDMFileHeapStatement &>(statement);
    return line("heap", record.sourceLocations, "name", record.sectionName, "size", record.size);
  }
  case tdm::kStatementStack: {
    const auto &record = static_cast<const TDMFileStackStatement &>(statement);
    return line("stack", record.sourceLocations, "name", record.name, "size", record.size);
  }
  case tdm::kStatementTable:
    return line("copytable", statement.sourceLocations);
  case tdm::kStatementReserved:
    return dump_reserved(static_cast<const TDMFileReservedStatement &>(statement));
  case tdm::kStatementSection:
    return dump_section(static_cast<const TDMFileSectionCreationStatement &>(statement));
  case tdm::kStatementGroup:
    return dump_group(static_cast<const TDMFileGroup &>(statement));
  case tdm::kStatementBlock:
    return line("block", statement.sourceLocations, "of",
                static_cast<const TDMFileBlock &>(statement).statements);
  case tdm::kStatementMemCopy: {
    const auto &record = static_cast<const TDMFileMemCopyStatement &>(statement);
    return line("memcopy", record.sourceLocations, "name", record.sectionName, "memory",
                record.memName, "fill", record.fillSpec);
  }
  default: {
    const auto &record = static_cast<const TDMFileStructStatement &>(statement);
    return line("struct", record.sourceLocations, "name", record.sectionName, "members",
                record.members);
  }
  }
}

std::string dump(const TDMFileSectionLayout &layout)
{
  return line("layout", layout.sourceLocations, "cpu", layout.cpuName, "core", layout.coreName,
              "space", layout.spaceName, "direction", unless(layout.locateDirection, 0),
              "statement", layout.statement);
}

std::string dump(const TDMFileInputModification &modification)
{
  return line("modify", modification.sourceLocations, "space", modification.space, "selector",
              modification.selector, "selects", modification.selects);
}

std::string dump(const TDMFileSectionSetup &setup)
{
  return line("setup", setup.sourceLocations, "cpu", setup.cpuName, "core", setup.coreName, "space",
              setup.spaceName, "vector_tables", setup.vectorTables, "reserved",
              setup.reservedRanges, "stacks", setup.stacks, "heaps", setup.heaps, "copytables",
              setup.copyTables, "start", setup.startAddress, "prohibited", setup.prohibitedSpaces,
              "modifications", setup.inputModifications);
}

std::string dump(const TDMFileSpace &space)
{
  return line("space", space.sourceLocations, "name", space.name, "id", unless(space.id, -1), "mau",
              space.mauSize, "align", space.alignment, "page_size", space.pageSize, "pages",
              space.pages, "page", space.pageRestrictSections, "direction",
              unless(space.locateDirection, 1), "literals", space.addressLiteralSpace, "stacks",
              space.stacks, "heaps", space.heaps, "copytable", space.copyTable, "direct_init",
              space.directInit, "vector_tables", space.vectorTables, "reserved",
              space.reservedRanges, "start", space.startAddress, "banks", space.banks, "mappings",
              space.mappings, "layouts", space.sectionLayouts);
}

std::string dump(const TDMFileArchitecture &architecture)
{
  return line("architecture", architecture.sourceLocations, "name", architecture.name, "parameters",
              architecture.parameters, "base", architecture.base, "arguments",
              architecture.baseArguments, "buses", architecture.buses, "spaces",
              architecture.spaces, "endianness", architecture.endianness);
}

std::string dump(const TDMFileCore &core)
{
  return line("core", core.sourceLocations, "name", core.name, "architecture", core.archName,
              "arguments", core.arguments, "endianness", core.endianness, "start",
              core.startAddress, "copy_core", core.copyTableCoreName, "copy_space",
              core.copyTableSpaceName, "imports", core.imports, "id_offset",
              unless(core.spaceIdOffset, 0));
}

std::string dump(const TDMFileDerivative &derivative)
{
  return line("derivative", derivative.sourceLocations, "name", derivative.name, "parameters",
              derivative.parameters, "base", derivative.base, "arguments", derivative.baseArguments,
              "cores", derivative.cores, "buses", derivative.buses, "memories", derivative.memories,
              "layouts", derivative.sectionLayouts, "setups", derivative.sectionSetups);
}

std::string dump(const TDMFileCPU &processor)
{
  return line("processor", processor.sourceLocations, "name", processor.name, "derivative",
              processor.derivativeName, "arguments", processor.arguments);
}

constexpr const char *operators[] = {"",  "*", "/",  "%",  "+", "-", ">>", "<<", "==", "!=",
                                     ">", "<", ">=", "<=", "&", "^", "|",  "&&", "||"};
constexpr const char *unary_operators[] = {"", "!", "~", "neg", "", "par"};

/// What stands before the operands, or the whole leaf.
std::string head(const TDMFileExpression &expression)
{
  switch (expression.kind()) {
  case tdm::kExprNumber:
    return std::to_string(static_cast<const TDMExprNumber &>(expression).value);
  case tdm::kExprVarRef:
    return static_cast<const TDMExprVarRef &>(expression).name.str();
  case tdm::kExprSymbolRef:
    return "\"" + static_cast<const TDMExprSymbolRef &>(expression).name + '"';
  case tdm::kExprUnary:
    return unary_operators[static_cast<const TDMExprUnaryApplication &>(expression).op];
  case tdm::kExprBinary:
    return operators[static_cast<const TDMExprBinaryApplication &>(expression).op];
  case tdm::kExprConditional:
    return "?";
  case tdm::kExprAbsolute:
    return "absolute";
  case tdm::kExprAddress: {
    const auto &address = static_cast<const TDMExprAddress &>(expression);
    return "addressof:" + std::to_string(address.objType) + ':' + address.objName;
  }
  case tdm::kExprDefined:
    return "defined:" + static_cast<const TDMExprDefined &>(expression).symbolName;
  case tdm::kExprMax:
    return "max";
  case tdm::kExprMin:
    return "min";
  case tdm::kExprSizeOf: {
    const auto &size = static_cast<const TDMExprSizeOf &>(expression);
    return "sizeof:" + std::to_string(size.objType) + ':' + size.objName;
  }
  case tdm::kExprExists:
    return "exists:" + static_cast<const TDMExprExists &>(expression).sectionName;
  default:
    return "checksum:" + std::to_string(static_cast<const TDMExprChecksum &>(expression).algo);
  }
}

std::string render(const TDMFileExpression &expression, bool with_places)
{
  // Only read through.
  const auto operands = tdm::expression_operands(const_cast<TDMFileExpression &>(expression));
  std::string text = head(expression);
  for (std::size_t i = 0; i < operands.count; ++i)
    text += ' ' + render(**operands.slots[i], with_places);
  if (operands.count != 0) text = '(' + text + ')';
  return with_places ? text + places(expression.sourceLocations) : text;
}

} // namespace

std::string dump(const TDMFileExpression &expression)
{
  return render(expression, false);
}

std::string dump_with_places(const TDMFileExpression &expression)
{
  return render(expression, true);
}

std::string dump(const TDMFileInterface &result)
{
  std::string text;
  const auto add = [&](const auto &list) {
    for (const auto &record : list) text += (text.empty() ? "" : " ") + dump(*record);
  };
  add(result.architectures);
  add(result.derivatives);
  add(result.processors);
  add(result.memories);
  add(result.buses);
  add(result.sectionLayouts);
  add(result.sectionSetups);
  return text;
}
