/// @file
/// A section of the caller's, as selections see it.
#pragma once

#include <string>

#include "common/tdm_types.h"

/// Implemented by a client that has sections to place. The flags are those of the attribute
/// letters. A section outlives every map and every selection that it takes part in.
struct TDM_CLIENT_API TDMSection {
  /// Flag `r`.
  virtual bool is_readable() const = 0;
  /// Flag `w`.
  virtual bool is_writable() const = 0;
  /// Flag `x`.
  virtual bool is_executable() const = 0;
  /// Flag `i`.
  virtual bool is_inited() const = 0;
  /// Flag `s`.
  virtual bool is_scratch() const = 0;
  /// Flag `b`.
  virtual bool is_blanked() const = 0;
  /// Flag `p`.
  virtual bool is_p() const = 0;
  /// What patterns are compared with. Stays the same, at the same place, while the section lives.
  virtual const std::string &name() const = 0;
  /// The section as messages name it.
  virtual std::string display_name() const = 0;
  virtual ~TDMSection();
};

/// A section that answers through a table of functions of the C interface.
struct TDM_CLIENT_API TDMSectionWrapper final : TDMSection {
  /// Fetches the name once. The table isn't copied; its entries may be null.
  TDMSectionWrapper(void *user, const tdm_section_functions *functions);

  bool is_readable() const override { return ask(functions_->is_readable); }
  bool is_writable() const override { return ask(functions_->is_writable); }
  bool is_executable() const override { return ask(functions_->is_executable); }
  bool is_inited() const override { return ask(functions_->is_inited); }
  bool is_scratch() const override { return ask(functions_->is_scratch); }
  bool is_blanked() const override { return ask(functions_->is_blanked); }
  bool is_p() const override { return ask(functions_->is_p); }
  const std::string &name() const override { return name_; }
  std::string display_name() const override { return text(functions_->get_display_name); }

  /// The caller's handle.
  void *user() const { return user_; }

private:
  bool ask(int (*function)(void *)) const { return function != nullptr && function(user_) != 0; }
  std::string text(const char *(*function)(void *)) const;

  void *user_;
  const tdm_section_functions *functions_;
  std::string name_;
};
