// The checksum of located data: the checks of its bounds, the words that memory units make up, and
// the CRC over them.
#include "expressions/checksum.h"

#include <cinttypes>
#include <cstdio>
#include <cstdlib>

#include "common/failures.h"
#include "expressions/expression_env.h"
#include "expressions/expression_tree.h"

namespace {

enum Endianness : int { little_endian = 1, big_endian = 2 };

constexpr std::array<std::uint32_t, 256> make_crc_table()
{
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    std::uint32_t crc = byte;
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320U : 0U);
    table[byte] = crc;
  }
  return table;
}

constexpr std::array<std::uint32_t, 256> crc_table = make_crc_table();

/// Runs the bytes of a word through CRC-32, the most significant one first.
std::uint32_t crc_of_word(std::uint32_t crc, std::uint32_t word)
{
  crc = ~crc;
  for (int shift = 24; shift >= 0; shift -= 8)
    crc = crc_table[(crc ^ (word >> shift)) & 0xFF] ^ (crc >> 8);
  return ~crc;
}

/// The word that the memory units make up, the first of them lowest or highest.
std::uint32_t assemble(const std::uint32_t *data, unsigned units, unsigned mau, int endianness)
{
  const std::uint32_t mask = mau == 32 ? 0xFFFFFFFFU : (1U << mau) - 1;
  std::uint32_t word = 0;
  for (unsigned unit = 0; unit < units; ++unit) {
    const std::uint32_t value = data[unit] & mask;
    if (endianness == little_endian) word |= value << (unit * mau);
    if (endianness == big_endian) word |= value << ((units - 1 - unit) * mau);
  }
  return word;
}

std::string hexadecimal(std::int64_t value)
{
  char text[24];
  std::snprintf(text, sizeof text, "0x%" PRIx64, static_cast<std::uint64_t>(value));
  return text;
}

struct FreeWithMalloc {
  void operator()(std::uint32_t *data) const { std::free(data); }
};

} // namespace

TDMChecksum::TDMChecksum(std::int32_t kind, std::unique_ptr<TDMExpression> start,
                         std::unique_ptr<TDMExpression> end, const TDMSourceLocation &place)
    : TDMExpression(Shape::checksum, bounds_),
      kind_(kind), bounds_{std::move(start), std::move(end)}, place_(place)
{
}

TDMChecksum::~TDMChecksum()
{
  tdm::ExpressionTree::dismantle(*this);
}

std::int64_t TDMChecksum::compute(TDMExpressionEnv *env)
{
  return tdm::ExpressionTree::evaluate(*this, env);
}

std::unique_ptr<TDMExpression> TDMChecksum::clone() const
{
  return tdm::ExpressionTree::clone(*this);
}

void TDMChecksum::collect_data_ranges(TDMExpressionEnv *env, DataRanges &ranges)
{
  const std::int64_t first = start().value(env);
  const std::int64_t last = end().value(env);
  ranges.emplace_back(first, last);
}

void TDMChecksum::refuse(const std::string &text) const
{
  throw new TDMSyntaxException(location_or("checksum", place_), text);
}

/// `env` is null where layout data isn't available; the bounds have been evaluated by then.
std::int64_t TDMChecksum::over_data(TDMExpressionEnv *env, std::int64_t start,
                                    std::int64_t end) const
{
  const TDMSourceLocation at = location_or("checksum", place_);
  if (env == nullptr) throw new TDMDataNeededForExpressionException(at, tdm::needs_layout_data);
  if (end <= start)
    refuse("checksum end address (" + hexadecimal(end) + ") must be higher than start address (" +
           hexadecimal(start) + ")");
  const std::unique_ptr<std::uint32_t, FreeWithMalloc> data(env->located_data(at, start, end));
  const int mau = env->data_mau_size();
  const int endianness = env->data_endianness();
  if (!data)
    throw new TDMDataIncompleteException(at,
                                         "the expression needs located section data for the given "
                                         "address range, but not every location is filled");
  if (kind_ != crc32w) return 0;
  return crc32w_over(data.get(), mau, endianness, start, end);
}

std::int64_t TDMChecksum::crc32w_over(const std::uint32_t *data, int mau, int endianness,
                                      std::int64_t start, std::int64_t end) const
{
  if (mau <= 0 || 32 % mau != 0)
    refuse("MAU size " + std::to_string(mau) + " is not supported for crc32w checksum");
  const auto units = static_cast<unsigned>(32 / mau);
  if (start % units != 0)
    refuse("start address (" + hexadecimal(start) + ") for crc32w checksum must be aligned on 4");
  if (end % units != 0)
    refuse("end address (" + hexadecimal(end) + ") for crc32w checksum must be aligned on 4");
  const auto length = static_cast<std::uint32_t>(static_cast<std::uint64_t>(end) -
                                                 static_cast<std::uint64_t>(start));
  std::uint32_t crc = 0;
  for (std::uint32_t done = 0; done < length; done += units)
    crc = crc_of_word(crc, assemble(data + done, units, static_cast<unsigned>(mau), endianness));
  return crc;
}
