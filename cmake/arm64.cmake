# Builds for Linux on arm64 on another processor: with Debian's cross compiler, against the packages of that
# architecture in build/roots/arm64, which script/lib/in-arm64 makes, and with the tools of the Qt installed
# here.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH source_dir)
set(CMAKE_SYSROOT ${source_dir}/build/roots/arm64)
if(NOT IS_DIRECTORY ${CMAKE_SYSROOT}/usr/include)
  message(FATAL_ERROR "There are no arm64 packages in ${CMAKE_SYSROOT}; script/lib/in-arm64 puts them there.")
endif()
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${CMAKE_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR}
  ${CMAKE_SYSROOT}/usr/lib/aarch64-linux-gnu/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig)

# moc, rcc and the like.
set(QT_HOST_PATH /usr)
file(GLOB QT_HOST_PATH_CMAKE_DIR /usr/lib/*/cmake/Qt6HostInfo)
cmake_path(GET QT_HOST_PATH_CMAKE_DIR PARENT_PATH QT_HOST_PATH_CMAKE_DIR)
