# Cross build for 64-bit ARM Linux with Debian's aarch64 cross compiler
# (g++-aarch64-linux-gnu); the programs and tests run under qemu-aarch64
# (qemu-user) with the target's libraries from /usr/aarch64-linux-gnu.
#
#   cmake -S . -B build-arm64 \
#     -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-aarch64-linux-gnu.cmake \
#     -DKEZ_BUILD_TOOLS=OFF -DKEZ_BUILD_BENCHMARKS=OFF -DKEZ_BUILD_JAVA=OFF
#   cmake --build build-arm64 && ctest --test-dir build-arm64
#
# GoogleTest is built from /usr/src/googletest (cmake/KezTesting.cmake), and
# libkez.so is linked for 16 KB pages like an Android build.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)

set(KEZ_CROSS_SYSROOT /usr/aarch64-linux-gnu)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

set(CMAKE_FIND_ROOT_PATH ${KEZ_CROSS_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L ${KEZ_CROSS_SYSROOT})

set(KEZ_PAGE_ALIGN_16K ON CACHE BOOL "Link libkez.so for 16 KB pages")
