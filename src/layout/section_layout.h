/// @file
/// A section layout: statements, and the end of the space that is filled first.
#pragma once

#include <cstdint>
#include <memory>

#include "common/tdm_object.h"
#include "common/tdm_types.h"
#include "layout/statements.h"

struct TDM_CLIENT_API TDMSectionLayout final : TDMObject {
  int32_t locate_direction = 0;        ///< 0 not set, 1 low to high, 2 high to low
  std::unique_ptr<TDMBlock> statement; ///< its statements; never null
};
