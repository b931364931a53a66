// Where the layouts and setups of a description find the space that stands for a group of spaces.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "common/block_pool.h"
#include "common/source_location.h"

struct TDMCloneSpace;
struct TDMCore;

struct TDMCloneSpaceRegistry {
  /// The clone space made for these full names, or null.
  virtual TDMCloneSpace *find_clone_space(const std::set<std::string> &names) const = 0;

  /// Makes the clone space of the named spaces and gives it to the core; null if no name is known.
  /// `place` is the definition that asked, for reports.
  /// `siblings` are the cores of the core's processor, which the spec may not hold yet.
  virtual TDMCloneSpace *
  create_clone_space(TDMCore &core, const tdm::PooledVector<std::unique_ptr<TDMCore>> &siblings,
                     const std::set<std::string> &names, const TDMSourceLocation &place) = 0;

protected:
  ~TDMCloneSpaceRegistry() = default;
};
