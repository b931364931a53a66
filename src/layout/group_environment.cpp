// Puts the rules of a group on top of those around it, and refuses rules that don't agree. The
// first disagreement is the one that is told, so the order of the steps is behaviour.
#include "common/failures.h"
#include "layout/group.h"
#include "layout/layout_space.h"
#include "layout/statement_env.h"
#include "mapping/wrapping.h"

namespace tdm {

namespace {

class InnerEnvironment {
public:
  InnerEnvironment(const TDMGroup &group, const TDMStatementEnv &outer, const LayoutSpace &space)
      : group_(group), outer_(outer), space_(space), inner_(outer.clone())
  {
  }

  std::unique_ptr<TDMStatementEnv> build()
  {
    set_contiguous();
    set_ordered();
    set_clustered();
    set_overlay();
    set_contents();
    set_paged();
    set_page_size();
    set_page_ranges();
    set_location();
    refuse_run_address_at_load_time();
    if (group_.cross_references) inner_->allow_cross_references = true;
    if (group_.priority != 1) inner_->priority = group_.priority;
    if (group_.output_section_name) inner_->output_section_name = &*group_.output_section_name;
    if (group_.load_time) inner_->load_time = true;
    set_copy();
    set_nocopy();
    if (group_.name) inner_->group_name = &*group_.name;
    return std::move(inner_);
  }

private:
  void set_contiguous()
  {
    if (!group_.contiguous) return;
    inner_->contiguous = true;
    if (inner_->clustered)
      fail_at("contiguous", "trying to set clustered restriction for contiguous group");
  }

  void set_ordered()
  {
    if (!group_.ordered) return;
    inner_->ordered = true;
    if (inner_->clustered)
      fail_at("ordered", "trying to set clustered restriction for ordered group");
  }

  void set_clustered()
  {
    if (!group_.clustered) return;
    inner_->clustered = true;
    if (inner_->ordered)
      fail_at("clustered", "trying to set ordered restriction for clustered group");
    if (inner_->contiguous)
      fail_at("clustered", "trying to set contiguous restriction for clustered group");
  }

  void set_overlay()
  {
    if (group_.overlay) {
      inner_->overlay = true;
      inner_->overlay_depth = 0;
    } else {
      inner_->overlay_depth = wrap_add(inner_->overlay_depth, int32_t{1});
    }
  }

  void set_contents()
  {
    if (group_.alignment != nullptr) inner_->alignment = group_.alignment.get();
    if (group_.attributes) inner_->attributes = &*group_.attributes;
    if (group_.fill != nullptr) inner_->fill = group_.fill.get();
  }

  void set_paged()
  {
    if (!group_.paged) return;
    inner_->paged = true;
    if (group_.page_number == nullptr) {
      if (outer_.ordered)
        fail_named("paged", "trying to set page restriction with ordered parent for group");
      if (outer_.contiguous)
        fail_named("paged", "trying to set page restriction with contiguous parent for group");
      if (outer_.clustered)
        fail_named("paged", "trying to set page restriction with clustered parent for group");
      return;
    }
    if (outer_.ordered)
      fail_named("paged", "trying to set absolute page restriction with ordered parent for group");
    if (outer_.contiguous)
      fail_named("paged",
                 "trying to set absolute page restriction with contiguous parent for group");
    if (outer_.clustered)
      fail_named("paged",
                 "trying to set absolute page restriction with clustered parent for group");
    inner_->page_number = group_.page_number.get();
    if (space_.page_size() == 0)
      fail_at("paged",
              "using page restriction without setting page size for space " + full_name(space_));
  }

  void set_page_size()
  {
    if (group_.page_size != nullptr)
      inner_->page_size = static_cast<int32_t>(group_.page_size->value());
  }

  void set_page_ranges()
  {
    if (group_.pages.empty() && group_.page_size == nullptr) return;
    auto ranges = std::make_shared<std::vector<TDMRange>>();
    if (group_.pages.empty()) {
      ranges->push_back({address(0), inner_->page_size});
    } else {
      ranges->reserve(group_.pages.size());
      for (const auto &[low, high] : group_.pages) {
        const int64_t start = low->value();
        ranges->push_back({address(start), wrap_sub(high->value(), start)});
      }
    }
    inner_->page_ranges = std::move(ranges);
  }

  void set_location()
  {
    if (group_.location == nullptr) return;
    const LocationKey key =
        group_.is_run_address ? LocationKey("runAddress") : LocationKey("loadAddress");
    if (inner_->location != nullptr) fail_named(key, "trying to set address twice for group");
    if (group_.location->is_address()) {
      if (!inner_->ordered) fail_named(key, "absolute address set for unordered group");
    } else {
      if (outer_.ordered)
        fail_named(key, "trying to set range restriction with ordered parent for group");
      if (outer_.contiguous)
        fail_named(key, "trying to set range restriction with contiguous parent for group");
      if (outer_.clustered)
        fail_named(key, "trying to set range restriction with clustered parent for group");
    }
    inner_->location = group_.location.get();
  }

  void refuse_run_address_at_load_time()
  {
    if (group_.is_run_address && inner_->load_time)
      fail_named("runAddress", "trying to set runtime address for loadtime group");
  }

  void set_copy()
  {
    if (!group_.copy) return;
    inner_->copy = true;
    if (inner_->nocopy)
      fail_named("copy", "trying to set copy attribute for group with inherited nocopy attribute");
    if (outer_.copy) fail_named("copy", "trying to set copy attribute twice for group");
    if (inner_->overlay) fail_named("copy", "trying to set copy attribute for overlay group");
    if (inner_->load_time) fail_named("copy", "trying to set copy attribute for load-time group");
  }

  void set_nocopy()
  {
    if (!group_.nocopy) return;
    inner_->nocopy = true;
    if (inner_->copy)
      fail_named("nocopy",
                 "trying to set nocopy attribute for group with inherited copy attribute");
    if (outer_.nocopy) fail_named("nocopy", "trying to set nocopy attribute twice for group");
    if (inner_->overlay) fail_named("nocopy", "trying to set nocopy attribute for overlay group");
    if (inner_->load_time)
      fail_named("nocopy", "trying to set nocopy attribute for load-time group");
  }

  [[nodiscard]] AddressValue address(int64_t value) const
  {
    return {value, 0, space_.source().get_mau_size()};
  }

  [[noreturn]] void fail_at(LocationKey key, const std::string &text) const
  {
    throw new TDMSyntaxException(group_.location_or(key, group_.location_or("group")), text);
  }

  /// With the name of the group, if it has one.
  [[noreturn]] void fail_named(LocationKey key, const std::string &text) const
  {
    fail_at(key, group_.name ? text + " " + *group_.name : text);
  }

  const TDMGroup &group_;
  const TDMStatementEnv &outer_;
  const LayoutSpace &space_;
  std::unique_ptr<TDMStatementEnv> inner_;
};

} // namespace

std::unique_ptr<TDMStatementEnv>
inner_environment(const TDMGroup &group, const TDMStatementEnv &outer, const LayoutSpace &space)
{
  return InnerEnvironment(group, outer, space).build();
}

} // namespace tdm
