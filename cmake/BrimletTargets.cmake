# One way to make a library, a program and a test, so that each folder's list of files is all its
# CMakeLists.txt has to say.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)

find_program(CCACHE_PROGRAM ccache)
foreach(language IN ITEMS CXX OBJCXX)
  if(CCACHE_PROGRAM AND NOT CMAKE_${language}_COMPILER_LAUNCHER)
    set(CMAKE_${language}_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
  endif()
endforeach()

add_library(brimlet_options INTERFACE)
target_compile_options(brimlet_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
  -Woverloaded-virtual -Wcast-qual -Wformat=2 -Wundef)
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
  target_compile_options(brimlet_options INTERFACE
    -fsanitize=${BRIMLET_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    # Does not know what clang 14 makes of a coroutine.
    $<$<CXX_COMPILER_ID:Clang>:-fno-sanitize=function>)
  target_link_options(brimlet_options INTERFACE -fsanitize=${BRIMLET_SANITIZE})
endif()

# brimlet_library(NAME SOURCES file... [PUBLIC lib...] [PRIVATE lib...])
function(brimlet_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${arg_PUBLIC} PRIVATE brimlet_options ${arg_PRIVATE})
endfunction()

# brimlet_program(NAME SOURCES file... [LINK lib...])
function(brimlet_program name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
  target_compile_definitions(${name} PRIVATE BRIMLET_VERSION="${PROJECT_VERSION}")
  target_link_libraries(${name} PRIVATE brimlet_options ${arg_LINK})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
endfunction()

# Where programs of a session keep their sockets; Qt insists on its being private.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/test-runtime)
file(CHMOD ${CMAKE_BINARY_DIR}/test-runtime PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)

# brimlet_test(AREA.TOPIC SOURCES file... [LINK lib...] [ENVIRONMENT var=value...] [SESSION])
# SESSION runs the test inside a private desktop (X server, bus, window manager, compositor,
# secret service); the others run offscreen.
function(brimlet_test name)
  cmake_parse_arguments(arg "SESSION" "TIMEOUT" "SOURCES;LINK;ENVIRONMENT" ${ARGN})
  string(REPLACE "." "_" target "tst_${name}")
  add_executable(${target} ${arg_SOURCES})
  target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR})
  target_compile_definitions(${target} PRIVATE
    BRIMLET_CORPORA="${BRIMLET_CORPORA}"
    BRIMLET_SOURCE_DIR="${CMAKE_SOURCE_DIR}"
    BRIMLET_BIN_DIR="${CMAKE_BINARY_DIR}/bin")
  target_link_libraries(${target} PRIVATE brimlet_options Qt6::Test ${arg_LINK})
  brimlet_test_again(${name} ${name} ${ARGN})
endfunction()

# brimlet_test_again(AREA.TOPIC-VARIANT AREA.TOPIC [ENVIRONMENT var=value...] [SESSION])
# The program of a test once more, in another environment.
function(brimlet_test_again name original)
  cmake_parse_arguments(arg "SESSION" "TIMEOUT" "SOURCES;LINK;ENVIRONMENT" ${ARGN})
  string(REPLACE "." "_" target "tst_${original}")
  if(arg_SESSION)
    add_test(NAME ${name}
      COMMAND ${CMAKE_SOURCE_DIR}/script/desktop-session $<TARGET_FILE:${target}>)
  else()
    add_test(NAME ${name} COMMAND ${target})
    list(APPEND arg_ENVIRONMENT
      "QT_QPA_PLATFORM=offscreen" "XDG_RUNTIME_DIR=${CMAKE_BINARY_DIR}/test-runtime")
  endif()
  # A warning of Qt's that nobody expects fails the test.
  list(APPEND arg_ENVIRONMENT "QT_FATAL_WARNINGS=1")
  if(APPLE)
    # Without a window system Qt misses a font there, and says so.
    list(APPEND arg_ENVIRONMENT "QT_LOGGING_RULES=qt.qpa.fonts.warning=false")
  endif()
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  set_tests_properties(${name} PROPERTIES
    TIMEOUT ${arg_TIMEOUT} ENVIRONMENT "${arg_ENVIRONMENT}")
endfunction()
