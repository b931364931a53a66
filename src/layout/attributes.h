/// @file
/// The seven flags of a section, by their letters.
#pragma once

struct TDMAttributes {
  bool r = false; ///< readable
  bool w = false; ///< writable
  bool x = false; ///< executable
  bool i = false; ///< initialised
  bool s = false; ///< scratch
  bool b = false; ///< blanked
  bool p = false; ///< has a meaning for the caller alone
};

static_assert(sizeof(TDMAttributes) == 7);
