// Spaces that stand for a group of spaces, asked for as layouts and setups do.
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <unistd.h>

#include <gtest/gtest.h>

#include "common/failures.h"
#include "mapping/walk.h"
#include "model/spec.h"
#include "preprocessor/preprocessor.h"

namespace {

namespace fs = std::filesystem;

const char *const two_spaces = R"(
architecture a {
  space Data { id = 3; mau = 8;
    map (dest = bus:d, src_offset = 0, dest_offset = 0, size = 0x2000); }
  space Code { id = 7; mau = 8;
    map (dest = bus:c, src_offset = 0x1000, dest_offset = 0x1000, size = 0x1000); }
  space Words { id = 8; mau = 16; map (dest = bus:d, size = 0x100); }
  bus d { mau = 8; width = 8; }
  bus c { mau = 8; width = 8; }
}
derivative chip {
  core cpu { architecture = many; }
  memory low { mau = 8; type = ram; size = 0x1000; map (dest = bus:cpu:d, size = 0x1000); }
  memory shared { mau = 8; type = ram; size = 0x1000;
    map (dest = bus:cpu:d, dest_offset = 0x1000, size = 0x1000);
    map (dest = bus:cpu:c, dest_offset = 0x1000, size = 0x1000); }
}
processor p { derivative = chip; }
)";

/// Ten spaces that each see a part of a memory of their own, and all another one.
std::string many_spaces()
{
  std::string text = "architecture many extends a {\n";
  for (int i = 0; i < 10; ++i) {
    const std::string offset = std::to_string(16 * i);
    text += "space x" + std::to_string(i) + " { id = " + std::to_string(20 + i) +
            "; mau = 8; map (dest = bus:d, src_offset = " + offset + ", dest_offset = " + offset +
            ", size = 16); map (dest = bus:c, src_offset = 0x800, dest_offset = 0x1000, size = "
            "16); }\n";
  }
  return text + "}\n";
}

class CloneSpaces : public ::testing::Test {
protected:
  void SetUp() override
  {
    const fs::path path =
        fs::temp_directory_path() / ("clone_space_" + std::to_string(getpid()) + ".tdm");
    std::ofstream(path) << two_spaces << many_spaces();
    tdm::preprocessor_start();
    spec_ = std::make_unique<TDMSpec>(std::vector<std::string>{path.string()});
    fs::remove(path);
  }

  void TearDown() override
  {
    spec_.reset();
    tdm::preprocessor_end();
  }

  TDMCloneSpace *create(const std::set<std::string> &names)
  {
    const auto &cores = spec_->processors.front()->cores;
    return spec_->create_clone_space(*cores.front(), cores, names, {"asked.tdm", 4, 2});
  }

  std::unique_ptr<TDMSpec> spec_;
};

TEST_F(CloneSpaces, ReachEachMemoryThroughTheLastMemberThatReachesIt)
{
  const std::set<std::string> names = {"p:cpu:Data", "p:cpu:Code"};
  EXPECT_EQ(spec_->find_clone_space(names), nullptr);
  TDMCloneSpace *clone = create(names);
  ASSERT_NE(clone, nullptr);
  EXPECT_EQ(spec_->find_clone_space(names), clone);
  EXPECT_EQ(clone->name, "p:cpu:code|p:cpu:data");
  EXPECT_EQ(clone->id, 30);
  EXPECT_EQ(clone->mau_size, 8);
  EXPECT_EQ(clone->valid_interval().low.value, 0);
  EXPECT_EQ(clone->valid_interval().high.value, 0x2000);

  // The set is ordered, so that Data comes behind Code and gets what both reach.
  ASSERT_EQ(clone->outgoing_mappings().size(), 2U);
  for (const TDMMapping *mapping : clone->outgoing_mappings()) {
    EXPECT_EQ(mapping->src_offset, mapping->dest_offset);
    EXPECT_EQ(mapping->size, 0x1000);
    EXPECT_EQ(mapping->priority, 0);
  }
  const auto routes = tdm::map_to_memory<AddressValue>(*clone, AddressValue{0x1234, 0, 8, -1});
  ASSERT_EQ(routes.size(), 1U);
  EXPECT_EQ(routes.front().value.value, 0x234);
}

TEST_F(CloneSpaces, ManyMembersAreReachedAsAFew)
{
  std::set<std::string> names;
  for (const char number : std::string("0123456789")) names.insert(std::string("p:cpu:x") + number);
  const TDMCloneSpace *clone = create(names);
  ASSERT_NE(clone, nullptr);

  // What one member alone reaches is at its own address, what all reach at that of the last.
  std::set<std::pair<int64_t, std::string>> reached;
  for (const TDMMapping *mapping : clone->outgoing_mappings()) {
    std::string member;
    mapping->destination()->get_full_name(member);
    reached.emplace(mapping->src_offset, member);
  }
  std::set<std::pair<int64_t, std::string>> expected = {{0x800, "p:cpu:x9"}};
  for (int i = 0; i < 10; ++i) expected.emplace(16 * i, "p:cpu:x" + std::to_string(i));
  EXPECT_EQ(reached, expected);
  EXPECT_EQ(clone->outgoing_mappings().size(), expected.size());
}

TEST_F(CloneSpaces, UnknownNamesAreLeftOutUnlessAllAre)
{
  EXPECT_EQ(create({"p:cpu:none", "q:k:Data", "Data"}), nullptr);
  TDMCloneSpace *clone = create({"p:cpu:none", "p:cpu:Data"});
  ASSERT_NE(clone, nullptr);
  EXPECT_EQ(clone->members.size(), 1U);
  EXPECT_EQ(create({"p:cpu:Code"})->id, clone->id + 1);
}

TEST_F(CloneSpaces, MembersCountInOneUnit)
{
  try {
    create({"p:cpu:Code", "p:cpu:Words"});
    FAIL() << "accepted";
  } catch (TDMFileException *failure) {
    EXPECT_EQ(failure->text(),
              "[\"asked.tdm\" 4/2] syntax error: the address spaces making up clone space "
              "\"p:cpu:code|p:cpu:words...\" do not all have the same MAU size");
    delete failure;
  }
}

} // namespace
