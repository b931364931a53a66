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

std::string dump(const std::string &text)
{
  return text;
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
  return pair.source + '>' + pair.destination;
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

/// Collects the fields of one record.
class Fields {
public:
  explicit Fields(const char *word) : text_(std::string(word) + '(') {}

  template <typename T> Fields &field(const char *name, const std::unique_ptr<T> &value)
  {
    return value ? put(name, dump(*value)) : *this;
  }
  template <typename T> Fields &field(const char *name, const std::optional<T> &value)
  {
    return value ? put(name, dump(*value)) : *this;
  }
  Fields &field(const char *name, bool flag) { return flag ? put(name, "") : *this; }
  Fields &number(const char *name, std::int64_t value, std::int64_t unset)
  {
    return value != unset ? put(name, std::to_string(value)) : *this;
  }
  template <typename T> Fields &list(const char *name, const std::vector<T> &values)
  {
    if (values.empty()) return *this;
    std::string text;
    for (const T &value : values) text += (text.empty() ? "" : ", ") + element(value);
    return put(name, '[' + text + ']');
  }
  [[nodiscard]] std::string end(const SourceLocations &locations = {}) const
  {
    return text_ + ')' + places(locations);
  }

private:
  template <typename T> static std::string element(const std::unique_ptr<T> &value)
  {
    return dump(*value);
  }
  template <typename T> static std::string element(const T &value) { return dump(value); }

  Fields &put(const char *name, const std::string &value)
  {
    if (text_.back() != '(') text_ += ' ';
    text_ += name;
    if (!value.empty()) text_ += '=' + value;
    return *this;
  }

  std::string text_;
};

std::string dump(const TDMFileFillSpec &fill)
{
  return Fields("fill")
      .list("values", fill.values)
      .field("alignment", fill.alignment)
      .end(fill.sourceLocations);
}

std::string dump(const TDMFileMapping &mapping)
{
  return Fields("map")
      .field("name", mapping.name)
      .number("kind", mapping.destinationKind, 0)
      .field("destination", mapping.destination)
      .field("dest_dbits", mapping.connectedDestinationLines)
      .field("dest_offset", mapping.destinationOffset)
      .field("size", mapping.size)
      .field("src_dbits", mapping.connectedSourceLines)
      .field("src_offset", mapping.sourceOffset)
      .number("bank", mapping.bankNum, -1)
      .number("dest_bank", mapping.destinationBankNum, -1)
      .field("reserved", mapping.reserved)
      .number("priority", mapping.priority, 0)
      .number("exec_priority", mapping.execPriority, -1)
      .end(mapping.sourceLocations);
}

std::string dump(const TDMFileBus &bus)
{
  return Fields("bus")
      .field("name", bus.name)
      .field("mau", bus.mauSize)
      .field("width", bus.busWidth)
      .field("address_width", bus.busAddressWidth)
      .field("wishbone", bus.wishbone)
      .list("mappings", bus.mappings)
      .end(bus.sourceLocations);
}

std::string dump(const TDMFileMemory &memory)
{
  return Fields("memory")
      .field("name", memory.name)
      .number("type", memory.memtype, 0)
      .field("reserved", memory.reserved)
      .field("mau", memory.mauSize)
      .field("size", memory.size)
      .number("priority", memory.priority, -1)
      .number("exec_priority", memory.execPriority, -1)
      .field("fill", memory.fillSpec)
      .field("write_unit", memory.writeUnit)
      .field("write_mode", memory.writeMode)
      .field("setuptime", memory.setupTime)
      .field("holdtime", memory.holdTime)
      .field("cycles", memory.cycles)
      .field("area", memory.area)
      .field("read_ports", memory.readPorts)
      .field("write_ports", memory.writePorts)
      .field("readwrite_ports", memory.readWritePorts)
      .list("mappings", memory.mappings)
      .end(memory.sourceLocations);
}

std::string dump(const TDMFileStartAddress &start)
{
  return Fields("start")
      .field("symbol", start.symbolName)
      .field("value", start.value)
      .number("bank", start.bank, -1)
      .end(start.sourceLocations);
}

std::string dump(const TDMFileCopySubTableSpace &space)
{
  return Fields("space")
      .field("cpu", space.cpuName)
      .field("core", space.coreName)
      .field("name", space.spaceName)
      .end(space.sourceLocations);
}

std::string dump(const TDMFileStackOrHeapDef &definition)
{
  const auto *stack = dynamic_cast<const TDMFileStackDef *>(&definition);
  Fields fields(stack ? "stack" : "heap");
  fields.field("name", definition.name)
      .field("min_size", definition.minimalSize)
      .number("grows", definition.growDirection, 0)
      .field("align", definition.alignment)
      .field("fixed", definition.fixed);
  if (stack) fields.field("id", stack->id);
  return fields.end(definition.sourceLocations);
}

std::string dump(const TDMFileVectorValue &value)
{
  return Fields("value")
      .number("type", value.type, 0)
      .field("symbol", value.symbolName.empty() ? std::nullopt : std::optional(value.symbolName))
      .list("values", value.values)
      .field("offset", value.loopOffset)
      .end(value.sourceLocations);
}

std::string dump(const TDMFileVector &vector)
{
  return Fields("vector")
      .field("ids", std::make_unique<std::string>(dump(vector.ids)))
      .field("value", vector.value)
      .field("optional", vector.optional)
      .end(vector.sourceLocations);
}

std::string dump(const TDMFileVectorTable &table)
{
  return Fields("vector_table")
      .field("name", table.name)
      .field("vector_size", table.vectorSize)
      .field("size", table.size)
      .field("id_symbol_prefix", table.idSymbolPrefix)
      .field("address", table.address)
      .field("memory", table.memoryName)
      .field("template", table.templateName)
      .field("template_symbol", table.templateSymbolName)
      .field("vector_prefix", table.vectorNamePrefix)
      .field("no_inline", !table.defaultInline)
      .field("copy", table.copy)
      .field("default", table.defaultValue)
      .list("vectors", table.vectors)
      .end(table.sourceLocations);
}

std::string dump(const TDMFileCopySubTable &table)
{
  return Fields("table")
      .field("symbol", table.symbol)
      .list("spaces", table.spaces)
      .end(table.sourceLocations);
}

std::string dump(const TDMFileCopyTable &table)
{
  return Fields("copytable")
      .field("align", table.alignment)
      .field("copy_unit", table.copyUnit)
      .field("dest", table.defaultCopyDestination)
      .list("dests", table.destinations)
      .field("page", table.pageRestrictROMCopies)
      .list("tables", table.subTables)
      .end(table.sourceLocations);
}

std::string dump(const TDMFileDirectInit &init)
{
  return Fields("direct_init")
      .field("align", init.alignment)
      .field("dest", init.defaultDestination)
      .list("dests", init.destinations)
      .end(init.sourceLocations);
}

std::string dump(const TDMFileBankDef &bank)
{
  return Fields("bank")
      .field("stub_template", bank.stubTemplate)
      .field("stub_bank", bank.stubArgBank)
      .field("stub_address", bank.stubArgAddress)
      .field("stub_switch", bank.stubArgSwitch)
      .field("stub_prefix", bank.stubPrefix)
      .field("switch_template", bank.switchTemplate)
      .field("switch_bank", bank.switchArgBank)
      .field("switch_prefix", bank.switchPrefix)
      .field("space", bank.spaceName)
      .end(bank.sourceLocations);
}

std::string dump(const TDMFileSelector &selector)
{
  const auto &attributes = static_cast<const TDMFileSelectAttrs &>(selector);
  return '+' + dump(attributes.attributesSet) + '-' + dump(attributes.attributesNotSet);
}

std::string dump(const TDMFileGroupLocationRange &range)
{
  return Fields("range")
      .field("memory", range.memoryName)
      .field("mapping", range.mappingName)
      .field("low", range.low)
      .field("high", range.high)
      .end();
}

std::string dump(const TDMFileGroupLocation &location)
{
  return Fields("location")
      .field("address", location.address)
      .field("memory", location.memoryName)
      .field("mapping", location.mappingName)
      .list("ranges", location.ranges)
      .end(location.sourceLocations);
}

std::string dump_group(const TDMFileGroup &group)
{
  return Fields("group")
      .field("name", group.name)
      .field("contiguous", group.contiguous)
      .field("clustered", group.clustered)
      .field("ordered", group.ordered)
      .field("overlay", group.overlay)
      .field("copy", group.copy)
      .field("nocopy", group.nocopy)
      .field("align", group.alignment)
      .field("attributes", group.attributes)
      .field("load_addr", group.loadTimeGroup)
      .field("load", group.loadAddress)
      .field("fill", group.fillSpec)
      .field("page", group.paged)
      .field("page_num", group.pageNum)
      .field("page_size", group.pageAlign)
      .list("pages", group.pages)
      .field("run", group.runAddress)
      .field("cross", group.crossReferences)
      .field("section", group.outputSectionName)
      .number("priority", group.priority, 1)
      .field("statement", group.statement)
      .end(group.sourceLocations);
}

std::string dump_section(const TDMFileSectionCreationStatement &section)
{
  return Fields("section")
      .field("name", std::optional(section.sectionName))
      .field("overflow", section.overflowSectionName)
      .field("size", section.size)
      .field("blocksize", section.blockSize)
      .field("attributes", section.attributes)
      .field("fill", section.fillSpec)
      .field("statement", section.statement)
      .end(section.sourceLocations);
}

std::string dump_reserved(const TDMFileReservedStatement &reserved)
{
  return Fields("reserved")
      .field("name", std::optional(reserved.sectionName))
      .field("size", reserved.size)
      .field("attributes", reserved.attributes)
      .field("fill", reserved.fillSpec)
      .field("absolute", reserved.allowAllocAbsolute)
      .field("ranged", reserved.allowAllocRanged)
      .end(reserved.sourceLocations);
}

std::string dump(const TDMFileSectionStatement &statement)
{
  switch (statement.kind()) {
  case tdm::kStatementAssignment: {
    const auto &record = static_cast<const TDMFileAssignment &>(statement);
    return Fields("assign")
        .field("symbol", std::optional(record.symbolName))
        .number("op", record.op, 0)
        .field("value", record.value)
        .end(record.sourceLocations);
  }
  case tdm::kStatementIf: {
    const auto &record = static_cast<const TDMFileIfStatement &>(statement);
    return Fields("if")
        .field("condition", record.condition)
        .field("true", record.trueStatement)
        .field("false", record.falseStatement)
        .end(record.sourceLocations);
  }
  case tdm::kStatementSelect: {
    const auto &record = static_cast<const TDMFileSelectSectionStatement &>(statement);
    return Fields("select")
        .field("name", record.sectionName)
        .field("ref_tree", record.referenceTree)
        .list("selectors", record.selectors)
        .end(record.sourceLocations);
  }
  case tdm::kStatementHeap: {
    const auto &record = static_cast<const TDMFileHeapStatement &>(statement);
    return Fields("heap")
        .field("name", std::optional(record.sectionName))
        .field("size", record.size)
        .end(record.sourceLocations);
  }
  case tdm::kStatementStack: {
    const auto &record = static_cast<const TDMFileStackStatement &>(statement);
    return Fields("stack")
        .field("name", std::optional(record.name))
        .field("size", record.size)
        .end(record.sourceLocations);
  }
  case tdm::kStatementTable:
    return Fields("copytable").end(statement.sourceLocations);
  case tdm::kStatementReserved:
    return dump_reserved(static_cast<const TDMFileReservedStatement &>(statement));
  case tdm::kStatementSection:
    return dump_section(static_cast<const TDMFileSectionCreationStatement &>(statement));
  case tdm::kStatementGroup:
    return dump_group(static_cast<const TDMFileGroup &>(statement));
  case tdm::kStatementBlock:
    return Fields("block")
        .list("of", static_cast<const TDMFileBlock &>(statement).statements)
        .end(statement.sourceLocations);
  case tdm::kStatementMemCopy: {
    const auto &record = static_cast<const TDMFileMemCopyStatement &>(statement);
    return Fields("memcopy")
        .field("name", std::optional(record.sectionName))
        .field("memory", record.memName)
        .field("fill", record.fillSpec)
        .end(record.sourceLocations);
  }
  default: {
    const auto &record = static_cast<const TDMFileStructStatement &>(statement);
    return Fields("struct")
        .field("name", std::optional(record.sectionName))
        .list("members", record.members)
        .end(record.sourceLocations);
  }
  }
}

std::string dump(const TDMFileSectionLayout &layout)
{
  return Fields("layout")
      .field("cpu", layout.cpuName)
      .field("core", layout.coreName)
      .field("space", layout.spaceName)
      .number("direction", layout.locateDirection, 0)
      .field("statement", layout.statement)
      .end(layout.sourceLocations);
}

std::string dump(const TDMFileInputModification &modification)
{
  return Fields("modify")
      .field("space", modification.space)
      .field("selector", modification.selector)
      .list("selects", modification.selects)
      .end(modification.sourceLocations);
}

std::string dump(const TDMFileSectionSetup &setup)
{
  return Fields("setup")
      .field("cpu", setup.cpuName)
      .field("core", setup.coreName)
      .field("space", setup.spaceName)
      .list("vector_tables", setup.vectorTables)
      .list("reserved", setup.reservedRanges)
      .list("stacks", setup.stacks)
      .list("heaps", setup.heaps)
      .list("copytables", setup.copyTables)
      .field("start", setup.startAddress)
      .list("prohibited", setup.prohibitedSpaces)
      .list("modifications", setup.inputModifications)
      .end(setup.sourceLocations);
}

std::string dump(const TDMFileSpace &space)
{
  return Fields("space")
      .field("name", space.name)
      .number("id", space.id, -1)
      .field("mau", space.mauSize)
      .field("align", space.alignment)
      .field("page_size", space.pageSize)
      .list("pages", space.pages)
      .field("page", space.pageRestrictSections)
      .number("direction", space.locateDirection, 1)
      .field("literals", space.addressLiteralSpace)
      .list("stacks", space.stacks)
      .list("heaps", space.heaps)
      .field("copytable", space.copyTable)
      .field("direct_init", space.directInit)
      .list("vector_tables", space.vectorTables)
      .list("reserved", space.reservedRanges)
      .field("start", space.startAddress)
      .list("banks", space.banks)
      .list("mappings", space.mappings)
      .list("layouts", space.sectionLayouts)
      .end(space.sourceLocations);
}

std::string dump(const TDMFileArchitecture &architecture)
{
  return Fields("architecture")
      .field("name", architecture.name)
      .list("parameters", architecture.parameters)
      .field("base", architecture.base)
      .list("arguments", architecture.baseArguments)
      .list("buses", architecture.buses)
      .list("spaces", architecture.spaces)
      .list("endianness", architecture.endianness)
      .end(architecture.sourceLocations);
}

std::string dump(const TDMFileCore &core)
{
  return Fields("core")
      .field("name", core.name)
      .field("architecture", core.archName)
      .list("arguments", core.arguments)
      .list("endianness", core.endianness)
      .field("start", core.startAddress)
      .field("copy_core", core.copyTableCoreName)
      .field("copy_space", core.copyTableSpaceName)
      .list("imports", core.imports)
      .number("id_offset", core.spaceIdOffset, 0)
      .end(core.sourceLocations);
}

std::string dump(const TDMFileDerivative &derivative)
{
  return Fields("derivative")
      .field("name", derivative.name)
      .list("parameters", derivative.parameters)
      .field("base", derivative.base)
      .list("arguments", derivative.baseArguments)
      .list("cores", derivative.cores)
      .list("buses", derivative.buses)
      .list("memories", derivative.memories)
      .list("layouts", derivative.sectionLayouts)
      .list("setups", derivative.sectionSetups)
      .end(derivative.sourceLocations);
}

std::string dump(const TDMFileCPU &processor)
{
  return Fields("processor")
      .field("name", processor.name)
      .field("derivative", processor.derivativeName)
      .list("arguments", processor.arguments)
      .end(processor.sourceLocations);
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
    return static_cast<const TDMExprVarRef &>(expression).name;
  case tdm::kExprSymbolRef:
    return '"' + static_cast<const TDMExprSymbolRef &>(expression).name + '"';
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
