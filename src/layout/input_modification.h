// `modify input`: sections that a space takes in changed.
#pragma once

#include <memory>
#include <vector>

#include "common/tdm_object.h"
#include "layout/section_selector.h"
#include "layout/selection_statement.h"

struct TDMSpace;

struct TDMInputModification final : TDMObject {
  TDMSpace *space = nullptr;                    ///< null if none is named
  std::unique_ptr<TDMSectionSelector> selector; ///< null if not given
  tdm::ObjectList<std::unique_ptr<TDMSelectionStatement>> selects;
};
