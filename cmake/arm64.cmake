# SPDX-FileCopyrightText: 2026 The Vela authors
# SPDX-License-Identifier: MIT

# Cross-compiles for arm64 on Debian's amd64, see CONTRIBUTING.md. The programs that the build itself runs, such as the
# catalogue's generator, run in an emulator.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64-static)
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/aarch64-linux-gnu/pkgconfig:/usr/share/pkgconfig)
set(CMAKE_INSTALL_LIBDIR lib/aarch64-linux-gnu CACHE PATH "")
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
