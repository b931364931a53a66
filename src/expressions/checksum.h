/// @file
/// `checksum(crc32w, start, end)`: a checksum over data that the environment has located.
#pragma once

#include <array>

#include "expressions/expression.h"

/// A checksum over the data from one address to another.
class TDM_CLIENT_API TDMChecksum final : public TDMExpression {
public:
  /// How it is computed.
  enum Kind : std::int32_t { crc32w = 0 };

  /// The place is reported at where the object has no location of key "checksum".
  TDMChecksum(std::int32_t kind, std::unique_ptr<TDMExpression> start,
              std::unique_ptr<TDMExpression> end, const TDMSourceLocation &place = {});
  ~TDMChecksum() override;

  std::int64_t compute(TDMExpressionEnv *env) override;
  ExprlibNode *to_exprlib(TDMExpressionEnv *) override { return nullptr; }
  void collect_data_ranges(TDMExpressionEnv *env, DataRanges &ranges) override;
  [[nodiscard]] std::unique_ptr<TDMExpression> clone() const override;

  /// One of Kind.
  [[nodiscard]] std::int32_t kind() const { return kind_; }
  /// The first address; stays the expression's.
  [[nodiscard]] TDMExpression &start() const { return *bounds_[0]; }
  /// The first address behind the data; stays the expression's.
  [[nodiscard]] TDMExpression &end() const { return *bounds_[1]; }

private:
  friend struct tdm::ExpressionTree;

  std::int64_t over_data(TDMExpressionEnv *env, std::int64_t start, std::int64_t end) const;
  std::int64_t crc32w_over(const std::uint32_t *data, int mau, int endianness, std::int64_t start,
                           std::int64_t end) const;
  [[noreturn]] void refuse(const std::string &text) const;

  std::int32_t kind_;
  std::array<std::unique_ptr<TDMExpression>, 2> bounds_;
  TDMSourceLocation place_;
};
