# Cross build for 64-bit ARM Linux on an x86-64 Debian machine: clang for the aarch64-linux-gnu
# target, binutils-aarch64-linux-gnu's linker and tools, and Debian's arm64 multiarch packages
# (libc6-dev:arm64, libstdc++-12-dev:arm64, libgtest-dev:arm64, ...) as the target's libraries.
# Clang rather than g++-aarch64-linux-gnu: that compiler cannot be installed beside gcc-multilib,
# which the 32-bit build needs on the same machine.
#
# Test programs run under qemu-aarch64 (qemu-user); the arm64 loader and libraries sit in their
# multiarch places, where the emulator finds them without a separate root.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)

set(CMAKE_C_COMPILER clang)
set(CMAKE_C_COMPILER_TARGET aarch64-linux-gnu)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_COMPILER_TARGET aarch64-linux-gnu)
set(CMAKE_AR aarch64-linux-gnu-ar CACHE FILEPATH "")
set(CMAKE_RANLIB aarch64-linux-gnu-ranlib CACHE FILEPATH "")
set(CMAKE_NM aarch64-linux-gnu-nm CACHE FILEPATH "")
set(CMAKE_OBJDUMP aarch64-linux-gnu-objdump CACHE FILEPATH "")

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)

# pkg-config answers for the target's libraries, not the build machine's.
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/aarch64-linux-gnu/pkgconfig:/usr/share/pkgconfig)
