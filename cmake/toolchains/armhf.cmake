# 32-bit Arm with hardware floating point, on a 64-bit Debian machine. TORLAN_SYSROOT names the
# tree of armhf packages; packaging/targets/armhf makes it.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TORLAN_SYSROOT)

set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(CMAKE_SYSROOT ${TORLAN_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(ENV{PKG_CONFIG_SYSROOT_DIR} ${TORLAN_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR}
    ${TORLAN_SYSROOT}/usr/lib/arm-linux-gnueabihf/pkgconfig:${TORLAN_SYSROOT}/usr/share/pkgconfig)

# Silences notes about the ABI of compilers before GCC 7; no object here is that old.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)

# Qt's code generators run on the building machine.
set(QT_HOST_PATH /usr)
file(GLOB QT_HOST_PATH_CMAKE_DIR /usr/lib/x86_64-linux-gnu/cmake /usr/lib/aarch64-linux-gnu/cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm-static;-L;${TORLAN_SYSROOT})
