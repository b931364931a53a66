// The arithmetic of the language: signed 64-bit numbers that wrap.
#pragma once

#include <cstdint>

namespace tdm {

/// The operators of TDMUnaryOperator; the operator is one of them.
[[nodiscard]] std::int64_t apply_unary(std::int32_t op, std::int64_t value);

/// The operators of TDMBinaryOperator; the operator is one of them, and the divisor isn't 0.
[[nodiscard]] std::int64_t apply_binary(std::int32_t op, std::int64_t left, std::int64_t right);

} // namespace tdm
