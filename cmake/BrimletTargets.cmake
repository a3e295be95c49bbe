# One way to make a library, a program and a test, so that each folder's list of files is all its
# CMakeLists.txt has to say.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)

# Paths are cached relative to the checkout. What uses precompiled headers is shared by clones at the same
# place only, since the compiler writes the place into them. The sloppiness is what ccache asks for with
# precompiled headers.
find_program(CCACHE_PROGRAM ccache)
foreach(language IN ITEMS CXX OBJCXX)
  if(CCACHE_PROGRAM AND NOT CMAKE_${language}_COMPILER_LAUNCHER)
    set(CMAKE_${language}_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
      CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 CCACHE_DEPEND=1
      CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE_PROGRAM})
  endif()
endforeach()

# When GCC optimises across files, the order of what it emits can depend on names that it draws at random.
if(CMAKE_INTERPROCEDURAL_OPTIMIZATION AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  string(REPLACE "-o <OBJECT>" "-frandom-seed=<OBJECT> -o <OBJECT>"
    CMAKE_CXX_COMPILE_OBJECT "${CMAKE_CXX_COMPILE_OBJECT}")
endif()

add_library(brimlet_options INTERFACE)
target_compile_options(brimlet_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Woverloaded-virtual -Wsuggest-override -Wcast-qual -Wformat=2 -Wundef
  # GLib's users get it anyway, and precompiled headers are shared among targets that define the same.
  -pthread)
# GLib uses the words "signals" and "slots" as names; casts between text kinds are always spelled out.
target_compile_definitions(brimlet_options INTERFACE
  QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING
  QT_DISABLE_DEPRECATED_BEFORE=0x060400 JSON_NOEXCEPTION=1)
# Guards against rewritten return addresses, each a processor's own. Macs use them in system programs only.
if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT APPLE)
  include(CheckCXXCompilerFlag)
  foreach(flag IN ITEMS -fcf-protection -mbranch-protection=standard)
    string(MAKE_C_IDENTIFIER "BRIMLET_HAS_${flag}" known)
    check_cxx_compiler_flag(${flag} ${known})
    if(${known})
      target_compile_options(brimlet_options INTERFACE ${flag})
    endif()
  endforeach()
endif()
if(BRIMLET_SANITIZE)
  set(sanitized $<NOT:$<BOOL:$<TARGET_PROPERTY:BRIMLET_UNSANITIZED>>>)
  target_compile_options(brimlet_options INTERFACE
    "$<${sanitized}:-fsanitize=${BRIMLET_SANITIZE};-fno-sanitize-recover=all;-fno-omit-frame-pointer>"
    # Does not know what clang 14 makes of a coroutine.
    $<$<AND:${sanitized},$<CXX_COMPILER_ID:Clang>>:-fno-sanitize=function>)
  target_link_options(brimlet_options INTERFACE $<${sanitized}:-fsanitize=${BRIMLET_SANITIZE}>)
endif()
if(CCACHE_PROGRAM AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(brimlet_options INTERFACE -fpch-preprocess)
endif()
# A fifth of the time of the default one. GCC's cross compilers do not find it.
find_program(LLD_PROGRAM ld.lld)
if(LLD_PROGRAM AND CMAKE_BUILD_TYPE STREQUAL "Debug" AND NOT APPLE AND NOT CMAKE_CROSSCOMPILING)
  add_link_options(-fuse-ld=lld)
endif()
# Tests spend less time in their own code than a compiler spends on optimising it.
add_library(brimlet_test_options INTERFACE)
target_link_libraries(brimlet_test_options INTERFACE brimlet_options)
# Under a sanitizer it is too slow: where a test and the product use the same inline function, the linker
# takes the test's, and a picture is then not decoded within its CPU time.
if(NOT BRIMLET_SANITIZE)
  target_compile_options(brimlet_test_options INTERFACE $<$<CONFIG:Debug>:-O0>)
endif()

include(cmake/BrimletPrecompiled.cmake)

# brimlet_library(NAME SOURCES file... [PUBLIC lib...] [PRIVATE lib...] [PRECOMPILED kind])
function(brimlet_library name)
  cmake_parse_arguments(arg "" "PRECOMPILED" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE brimlet_options)
  target_link_libraries(${name} PUBLIC ${arg_PUBLIC} PRIVATE ${arg_PRIVATE})
  if(arg_PRECOMPILED)
    brimlet_precompile(${name} ${arg_PRECOMPILED})
  endif()
endfunction()

# brimlet_program(NAME SOURCES file... [LINK lib...] [PRECOMPILED kind])
function(brimlet_program name)
  cmake_parse_arguments(arg "" "PRECOMPILED" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
  target_compile_definitions(${name} PRIVATE BRIMLET_VERSION="${PROJECT_VERSION}")
  target_link_libraries(${name} PRIVATE brimlet_options ${arg_LINK})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
  if(arg_PRECOMPILED)
    brimlet_precompile(${name} ${arg_PRECOMPILED})
  endif()
endfunction()
