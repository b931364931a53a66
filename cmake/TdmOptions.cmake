# What all our own targets are compiled with: warnings, and the sanitizers where they are asked for.
add_library(tdm_options INTERFACE)
target_compile_options(tdm_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # Its optimiser sees overlaps in every std::string sum of a literal and a text.
  target_compile_options(tdm_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
endif()
if(TDM_WERROR)
  target_compile_options(tdm_options INTERFACE -Werror)
endif()
if(TDM_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(TDM_FUZZ)
  # Counted edges alone: calls at each comparison, as fuzzer-no-link has them, cost half of the runs.
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer
                      -fsanitize-coverage=inline-8bit-counters,pc-table)
  add_link_options(-fsanitize=address,undefined)
endif()
if(TDM_COVERAGE)
  add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
  add_link_options(-fprofile-instr-generate)
endif()
