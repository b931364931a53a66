// How often this program and the libraries in it have asked operator new for memory.
#pragma once

#include <cstddef>

std::size_t allocations();
