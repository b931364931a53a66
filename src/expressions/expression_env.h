/// @file
/// What an expression can ask about sections, symbols and located data: the environment, and the
/// one that is built from the two callbacks of the C interface.
#pragma once

#include <cstdint>
#include <string>

#include "common/source_location.h"
#include "common/tdm_types.h"

struct ExprlibContext;
struct ExprlibNode;

/// Implemented by a client that evaluates expressions; it outlives each evaluation that uses it.
/// An operation with a result of type bool returns false when it has no answer, and the out value
/// then doesn't count. Nodes that are returned carry one reference, which goes to the caller.
///
/// A null node means that there is none: a form that is asked for itself is then null too, and one
/// that would stand in an operator fails. An operation may throw; the exception passes through the
/// evaluation, which keeps the values that it had found by then. A location is that of the asking
/// expression in the description.
class TDM_CLIENT_API TDMExpressionEnv {
public:
  /// Whether there is a section of the name: `exists`.
  virtual bool section_exists(const std::string &name) = 0;
  /// Whether there is a definition of the symbol: TDMExpression::refers_to_defined.
  virtual bool symbol_defined(const std::string &name) = 0;

  /// The context in which to_exprlib builds its nodes; stays the environment's. Null if rendering
  /// isn't supported: it then fails with an ExprlibException.
  virtual ExprlibContext *exprlib_context() = 0;

  /// `addressof` and `sizeof` of a section, in MAUs: values for evaluation, where no answer counts
  /// as -1, and nodes for rendering.
  virtual bool section_address(const std::string &name, const TDMSourceLocation &location,
                               std::int64_t &value) = 0;
  /// `addressof` of a section, for rendering.
  virtual ExprlibNode *section_address_node(const std::string &name,
                                            const TDMSourceLocation &location) = 0;
  /// `sizeof` of a section, in MAUs; without an answer it is -1.
  virtual bool section_size(const std::string &name, const TDMSourceLocation &location,
                            std::int64_t &value) = 0;
  /// `sizeof` of a section, for rendering.
  virtual ExprlibNode *section_size_node(const std::string &name,
                                         const TDMSourceLocation &location) = 0;

  /// The symbols at the first address of a group, and behind its last one.
  virtual std::string group_start_symbol(const std::string &group) = 0;
  /// The symbol behind the last address of a group.
  virtual std::string group_end_symbol(const std::string &group) = 0;
  /// `addressof` of a group, for rendering.
  virtual ExprlibNode *group_address_node(const std::string &group) = 0;

  /// A linker symbol: its value for evaluation, which fails without one, and its node for
  /// rendering. Evaluation asks for the node too, before the value, and releases it.
  virtual bool symbol_value(const std::string &name, std::int64_t &value) = 0;
  /// A linker symbol, for rendering. Evaluation asks for it too, before the value, and releases it.
  virtual ExprlibNode *symbol_node(const std::string &name) = 0;

  /// True where located data can be asked for: in struct statements and symbol assignments.
  virtual bool layout_data_available() = 0;

  /// The memory units from start up to end, one per element, in memory from malloc(), which the
  /// expression gives back with free(). Null when not every location is filled.
  virtual std::uint32_t *located_data(const TDMSourceLocation &location, std::int64_t start,
                                      std::int64_t end) = 0;

  /// 1 for little endian, 2 for big endian.
  virtual int data_endianness() = 0;

  /// Bits of one memory unit.
  virtual int data_mau_size() = 0;

protected:
  // Environments aren't owned through this interface, whose slots are the operations above.
  ~TDMExpressionEnv() = default;
};

/// Answers `exists` and `defined` through callbacks; there is no layout data.
class TDM_CLIENT_API TDMExpressionEnvWrapper final : public TDMExpressionEnv {
public:
  /// The table is not copied. It and its entries may be null.
  TDMExpressionEnvWrapper(const tdm_expression_callbacks *callbacks, void *user)
      : callbacks_(callbacks), user_(user)
  {
  }

  bool section_exists(const std::string &name) override;
  bool symbol_defined(const std::string &name) override;
  ExprlibContext *exprlib_context() override { return nullptr; }
  bool section_address(const std::string &, const TDMSourceLocation &, std::int64_t &) override;
  ExprlibNode *section_address_node(const std::string &, const TDMSourceLocation &) override;
  bool section_size(const std::string &, const TDMSourceLocation &, std::int64_t &) override;
  ExprlibNode *section_size_node(const std::string &, const TDMSourceLocation &) override;
  std::string group_start_symbol(const std::string &) override { return {}; }
  std::string group_end_symbol(const std::string &) override { return {}; }
  ExprlibNode *group_address_node(const std::string &) override { return nullptr; }
  bool symbol_value(const std::string &, std::int64_t &) override { return false; }
  ExprlibNode *symbol_node(const std::string &) override { return nullptr; }
  bool layout_data_available() override { return false; }
  std::uint32_t *located_data(const TDMSourceLocation &, std::int64_t, std::int64_t) override;
  int data_endianness() override { return 0; }
  int data_mau_size() override { return 0; }

private:
  const tdm_expression_callbacks *callbacks_;
  void *user_;
};
