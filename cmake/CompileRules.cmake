# One set of compile rules for every target of the project.
# Results are promised bit for bit: no fused multiply-add and no fast-math anywhere.
add_library(orv_compile_rules INTERFACE)
target_compile_options(orv_compile_rules INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Werror -ffp-contract=off)
# GCC 12 sees overlapping copies in any optimised sum of a literal and a std::string, where there are none.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(orv_compile_rules INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
endif()

if(ORV_SANITIZE)
  target_compile_options(orv_compile_rules INTERFACE -fsanitize=${ORV_SANITIZE} -fno-sanitize-recover=all
    -fno-omit-frame-pointer -g)
  target_link_options(orv_compile_rules INTERFACE -fsanitize=${ORV_SANITIZE})
endif()

# What is counted for line coverage: the library's own code, and the unit tests, which bring its templates to life.
# Counts are atomic, since threads that run the same line would lose some and leave contradictions behind.
add_library(orv_counted INTERFACE)
if(ORV_COVERAGE)
  target_compile_options(orv_counted INTERFACE --coverage -fprofile-update=atomic -O0 -g)
  target_link_options(orv_compile_rules INTERFACE --coverage)
endif()
