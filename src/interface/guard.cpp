// Sorts the failures by family. What is thrown by pointer is deleted as the exact type that it was
// caught as: the classes below TDMFileException add no member and one handler serves them all,
// while the others carry what they like and have a handler each.
#include "interface/guard.h"

#include <exception>
#include <memory>
#include <string>

#include "common/failures.h"
#include "mapping/address_value.h"
#include "mapping/interval.h"
#include "mapping/interval_set.h"

namespace tdm {

namespace {

constexpr const char *mau_text = "addresses in MAUs of different sizes don't go together";
constexpr const char *overlap_text = "intervals overlap";
constexpr const char *arithmetic_text = "address arithmetic failed";
constexpr const char *unknown_text = "unknown failure";

template <class Failure> std::unique_ptr<const Failure> owned(const Failure *failure)
{
  return std::unique_ptr<const Failure>(failure);
}

/// What was thrown by pointer: all failures of our own.
void keep_thrown_pointer(Tell outside)
{
  try {
    throw;
  } catch (const TDMFileException *failure) {
    keep_failure(owned(failure)->text(), Tell::last_error);
  } catch (const TDMArgumentsException *failure) {
    keep_failure(owned(failure)->text(), outside);
  } catch (const Interval::PatternOverflowException *failure) {
    keep_failure(owned(failure)->text(), outside);
  } catch (const AddressValue::MauException *failure) {
    owned(failure);
    keep_failure(mau_text, outside);
  } catch (const IntervalSet::OverlapException *failure) {
    owned(failure);
    keep_failure(overlap_text, outside);
  } catch (const MauLibException *failure) {
    owned(failure);
    keep_failure(arithmetic_text, outside);
  } catch (const std::exception *failure) {
    keep_failure(owned(failure)->what(), outside);
  }
}

/// The same for what was thrown by value, by the language's runtime for instance.
void keep_thrown_value(Tell outside)
{
  try {
    keep_thrown_pointer(outside);
  } catch (const TDMFileException &failure) {
    keep_failure(failure.text(), Tell::last_error);
  } catch (const TDMArgumentsException &failure) {
    keep_failure(failure.text(), outside);
  } catch (const Interval::PatternOverflowException &failure) {
    keep_failure(failure.text(), outside);
  } catch (const AddressValue::MauException &) {
    keep_failure(mau_text, outside);
  } catch (const IntervalSet::OverlapException &) {
    keep_failure(overlap_text, outside);
  } catch (const MauLibException &) {
    keep_failure(arithmetic_text, outside);
  } catch (const std::exception &failure) {
    keep_failure(failure.what(), outside);
  }
}

} // namespace

void keep_current_failure(Tell outside_family) noexcept
{
  // A failure of keeping the text can only be exhausted memory. It passes through the handlers
  // above, so the text of the failure at hand is all that gets lost.
  try {
    keep_thrown_value(outside_family);
  } catch (const std::exception &) {
    count_failure();
  } catch (...) {
    keep_failure(unknown_text, outside_family);
  }
}

} // namespace tdm
