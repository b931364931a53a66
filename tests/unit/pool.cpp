// The pool of texts, from the beginning of a test program to its end.
#include "preprocessor/string_pool.h"

#include <gtest/gtest.h>

namespace {

class Pool final : public testing::Environment {
public:
  void SetUp() override { tdm::string_pool_start(); }
  void TearDown() override { tdm::string_pool_end(); }
};

[[maybe_unused]] const auto *const pool = testing::AddGlobalTestEnvironment(new Pool);

} // namespace
