// Joining a directory and a file name.
#pragma once

#include <string>
#include <string_view>

/// The name as seen from the directory. A name with a drive letter or a leading "/" stands for
/// itself; otherwise each ".." of the name removes the last component of what stands before it, and
/// "." disappears. A "\" counts as "/" in both. An empty directory adds nothing.
[[nodiscard]] std::string path_join(std::string_view directory, std::string_view name);
