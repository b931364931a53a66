// Builds bank definitions, tests what each kind needs, and keeps the list of bank numbers.
#include "layout/bank_def.h"

#include "common/failures.h"
#include "language/records.h"
#include "layout/record_values.h"
#include "preprocessor/string_pool.h"

namespace {

[[noreturn]] void missing(const TDMFileBankDef &record, const std::string &text,
                          tdm::Text space_name)
{
  throw new TDMSyntaxException(tdm::place_of(record, "bank"), text + space_name + "\"");
}

} // namespace

TDMBankDef::TDMBankDef(const TDMFileBankDef &record, const std::string &space_full_name)
    : TDMObject{record.sourceLocations}, name(tdm::pooled_text(space_full_name + ":bank")),
      stub_template(record.stubTemplate), stub_prefix(record.stubPrefix),
      stub_arg_address(record.stubArgAddress), stub_arg_bank(record.stubArgBank),
      space_name(record.spaceName)
{
}

void TDMBankDef::add_bank(int32_t bank, const TDMSourceLocation &place)
{
  if (!banks.insert(bank).second)
    throw new TDMSyntaxException(place, "bank number " + std::to_string(bank) +
                                            " declared more than once for bank definition" + name);
}

TDMSingleSwitchBankDef::TDMSingleSwitchBankDef(const TDMFileBankDef &record, tdm::Text space,
                                               const std::string &space_full_name)
    : TDMBankDef(record, space_full_name)
{
  if (space_name) return; // the other space's definition may hold all the rest
  if (!stub_template)
    missing(record, "stub template name not given in bank specification \"", space);
  if (!stub_arg_address)
    missing(record, "stub address symbol not given in bank specification \"", space);
  if (!stub_arg_bank)
    missing(record, "stub bank number symbol not given in bank specification \"", space);
  if (!stub_prefix) missing(record, "stub prefix not given in bank specification \"", space);
}

TDMBankDependentSwitchBankDef::TDMBankDependentSwitchBankDef(const TDMFileBankDef &record,
                                                             tdm::Text space,
                                                             const std::string &space_full_name)
    : TDMBankDef(record, space_full_name), stub_arg_switch(record.stubArgSwitch),
      switch_template(record.switchTemplate), switch_prefix(record.switchPrefix),
      switch_arg_bank(record.switchArgBank)
{
  if (space_name) return;
  if (!stub_template)
    missing(record, "stub template name not given in bank specification \"", space);
  if (!stub_arg_address)
    missing(record, "stub address symbol not given in bank specification \"", space);
  if (!stub_arg_switch)
    missing(record, "stub switch call symbol not given in bank specification \"", space);
  if (!switch_template)
    missing(record, "switch template name not given in bank specification \"", space);
  if (!switch_prefix) missing(record, "switch prefix not given in bank specification \"", space);
  if (!switch_arg_bank)
    missing(record, "switch bank number symbol not given in bank specification \"", space);
  if (!stub_prefix) missing(record, "stub prefix not given in bank specification \"", space);
}

std::unique_ptr<TDMBankDef> make_bank_def(const TDMFileBankDef &record, tdm::Text space_name,
                                          const std::string &space_full_name)
{
  if (record.switchTemplate)
    return std::make_unique<TDMBankDependentSwitchBankDef>(record, space_name, space_full_name);
  return std::make_unique<TDMSingleSwitchBankDef>(record, space_name, space_full_name);
}
