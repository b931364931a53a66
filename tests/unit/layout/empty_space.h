// A space that nothing is mapped to, for tests that need some space.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "layout/layout_space.h"

class EmptySpace final : public tdm::LayoutSpace, public TDMMapSource, public TDMMapDestination {
public:
  [[nodiscard]] const TDMMapSource &source() const override { return *this; }
  [[nodiscard]] const TDMMapDestination &destination() const override { return *this; }
  [[nodiscard]] int32_t page_size() const override { return 0; }
  [[nodiscard]] const tdm::ObjectList<std::unique_ptr<TDMRange>> &page_ranges() const override
  {
    return page_ranges_;
  }
  [[nodiscard]] const tdm::LayoutSpace *address_literal_space() const override { return nullptr; }

  int get_mau_size() const override { return 8; }
  void get_full_name(std::string &out) const override { out = "c:k:s"; }
  void add_outgoing_mapping(TDMMapping *) override {}
  void add_incoming_mapping(TDMMapping *) override {}
  const tdm::MappingList &outgoing_mappings() const override { return none_; }
  const tdm::MappingList &incoming_mappings() const override { return none_; }

private:
  tdm::ObjectList<std::unique_ptr<TDMRange>> page_ranges_;
  tdm::MappingList none_;
};
