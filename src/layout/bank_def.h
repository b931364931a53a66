// How code in the banks of a space is called: the stubs and switches that the linker makes, and
// the numbers of the banks.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "common/tdm_object.h"
#include "common/text.h"

class TDMFileBankDef;

struct TDMBankDef : TDMObject {
  /// The form of the stubs, as a word.
  virtual const char *kind_name() const = 0;
  virtual ~TDMBankDef() = default;

  TDMBankDef(const TDMBankDef &) = delete;
  TDMBankDef &operator=(const TDMBankDef &) = delete;

  /// Enters a bank number; one that is there already is refused at the place.
  void add_bank(int32_t bank, const TDMSourceLocation &place);

  tdm::Text name; ///< the full name of the space, then ":bank"
  tdm::ObjectSet<int32_t> banks;
  std::optional<tdm::Text> stub_template;
  std::optional<tdm::Text> stub_prefix;
  std::optional<tdm::Text> stub_arg_address;
  std::optional<tdm::Text> stub_arg_bank;
  std::optional<tdm::Text> space_name; ///< the space whose banks count here too

protected:
  TDMBankDef(const TDMFileBankDef &record, const std::string &space_full_name);
};

/// One stub does the whole switch.
struct TDMSingleSwitchBankDef final : TDMBankDef {
  TDMSingleSwitchBankDef(const TDMFileBankDef &record, tdm::Text space_name,
                         const std::string &space_full_name);

  const char *kind_name() const override { return "jstub"; }
};

/// The stub calls a switch routine that each bank has of its own.
struct TDMBankDependentSwitchBankDef final : TDMBankDef {
  TDMBankDependentSwitchBankDef(const TDMFileBankDef &record, tdm::Text space_name,
                                const std::string &space_full_name);

  const char *kind_name() const override { return "bar"; }

  std::optional<tdm::Text> stub_arg_switch;
  std::optional<tdm::Text> switch_template;
  std::optional<tdm::Text> switch_prefix;
  std::optional<tdm::Text> switch_arg_bank;
};

/// The kind that the record asks for: it depends on whether a switch template is given.
std::unique_ptr<TDMBankDef> make_bank_def(const TDMFileBankDef &record, tdm::Text space_name,
                                          const std::string &space_full_name);
