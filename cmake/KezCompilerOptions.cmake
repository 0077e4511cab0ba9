# Compiler settings shared by every target of the project.
#
# -ffp-contract=off: no fused multiply-add. Forecasts must come out
# bit-identical on x86-64 and arm64, and the order of every floating-point
# operation is part of the contract. No fast-math for the same reason.

set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  add_compile_options(-Wall -Wextra -ffp-contract=off -fno-fast-math)
endif()

if(KEZ_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer
                      -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()
