# Test programs, one a folder as a rule, and the tests that CTest knows: each runs one suite, which is
# one file tst_SUITE.cpp, in a process of its own.

# Where programs of a session keep their sockets; Qt insists on its being private.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/test-runtime)
file(CHMOD ${CMAKE_BINARY_DIR}/test-runtime PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)

# These name each target's folders, so nothing compiled would serve two targets, or two checkouts.
set_property(TARGET Qt6::Test PROPERTY INTERFACE_COMPILE_DEFINITIONS QT_TESTLIB_LIB)

# The macros of Qt 6.8 that wait for a condition convert a duration to an int.
if(Qt6_VERSION VERSION_GREATER_EQUAL 6.8)
  set_property(TARGET Qt6::Test APPEND PROPERTY INTERFACE_COMPILE_OPTIONS -Wno-conversion)
endif()

# brimlet_moc(FILE OUTPUT): run without the folders of headers, which takes a fiftieth of the time. moc
# needs them for macros alone, and no class here hides its slots behind one.
function(brimlet_moc file output)
  get_filename_component(file ${file} ABSOLUTE)
  add_custom_command(OUTPUT ${output} COMMAND Qt6::moc ${file} -o ${output} DEPENDS ${file} VERBATIM)
endfunction()

# brimlet_test_program(NAME KIND SUITES suite... [HEADERS file...] [SOURCES file...] [LINK lib...]
#                      [NEEDS program...])
# HEADERS are those with classes for moc.
# KIND says what of Qt the program links besides: core, gui, widgets, or network, which is all of them.
# NEEDS names the programs that the tests start.
function(brimlet_test_program name kind)
  cmake_parse_arguments(arg "" "" "SUITES;HEADERS;SOURCES;LINK;NEEDS" ${ARGN})
  set(mocs ${CMAKE_CURRENT_BINARY_DIR}/${name}_mocs)
  list(TRANSFORM arg_SUITES REPLACE "([^/]+)$" "tst_\\1")
  foreach(suite IN LISTS arg_SUITES)
    get_filename_component(file ${suite} NAME)
    set(source ${suite}.cpp)
    if(NOT EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${source})
      set(source ${suite}.mm)
    endif()
    brimlet_moc(${source} ${mocs}/${file}.moc)
    list(APPEND arg_SOURCES ${source} ${mocs}/${file}.moc)
  endforeach()
  foreach(header IN LISTS arg_HEADERS)
    get_filename_component(file ${header} NAME_WE)
    brimlet_moc(${header} ${mocs}/moc_${file}.cpp)
    list(APPEND arg_SOURCES ${mocs}/moc_${file}.cpp)
  endforeach()
  add_executable(${name} ${arg_SOURCES})
  set_target_properties(${name} PROPERTIES AUTOMOC OFF)
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR} ${mocs})
  target_link_libraries(${name} PRIVATE
    ${BRIMLET_PRECOMPILED_LINK_test_${kind}} brimlet_test_main ${arg_LINK})
  brimlet_precompile(${name} test_${kind})
  if(arg_NEEDS)
    add_dependencies(${name} ${arg_NEEDS})
  endif()
endfunction()

# brimlet_test(AREA.TOPIC PROGRAM [SUITE suite] [SESSION] [TIMEOUT seconds] [ENVIRONMENT var=value...])
# The suite is called TOPIC unless told otherwise. SESSION runs it inside a private desktop (X server,
# bus, window manager, compositor, secret service); the others run offscreen.
function(brimlet_test name program)
  cmake_parse_arguments(arg "SESSION" "SUITE;TIMEOUT" "ENVIRONMENT" ${ARGN})
  if(NOT arg_SUITE)
    string(REGEX REPLACE "^[^.]*\\." "" arg_SUITE ${name})
  endif()
  if(arg_SESSION)
    add_test(NAME ${name}
      COMMAND ${CMAKE_SOURCE_DIR}/script/desktop-session $<TARGET_FILE:${program}> ${arg_SUITE})
  else()
    add_test(NAME ${name} COMMAND ${program} ${arg_SUITE})
    list(PREPEND arg_ENVIRONMENT
      "QT_QPA_PLATFORM=offscreen" "XDG_RUNTIME_DIR=${CMAKE_BINARY_DIR}/test-runtime")
  endif()
  # A warning of Qt's that nobody expects fails the test.
  list(APPEND arg_ENVIRONMENT "QT_FATAL_WARNINGS=1")
  if(APPLE)
    # Without a window system Qt misses a font there, and says so.
    list(APPEND arg_ENVIRONMENT "QT_LOGGING_RULES=qt.qpa.fonts.warning=false")
  elseif(Qt6_VERSION VERSION_GREATER_EQUAL 6.8)
    # It warns of each call on the bus that it refuses, as tests want it to, and of events that its own
    # Wayland plugin gets in another order than it expects.
    list(APPEND arg_ENVIRONMENT
      "QT_LOGGING_RULES=qt.dbus.integration.warning=false\\;qt.qpa.wayland.textinput.warning=false")
  endif()
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  if(CMAKE_CROSSCOMPILING)
    math(EXPR arg_TIMEOUT "5 * ${arg_TIMEOUT}")
  endif()
  # CTest begins with what may take longest.
  set_tests_properties(${name} PROPERTIES
    TIMEOUT ${arg_TIMEOUT} COST ${arg_TIMEOUT} ENVIRONMENT "${arg_ENVIRONMENT}")
endfunction()

# brimlet_tests(AREA PROGRAM TOPICS topic... [SESSION] [TIMEOUT seconds] [ENVIRONMENT var=value...])
# A test for each of the topics.
function(brimlet_tests area program)
  cmake_parse_arguments(arg "" "" "TOPICS;ENVIRONMENT" ${ARGN})
  foreach(topic IN LISTS arg_TOPICS)
    brimlet_test(${area}.${topic} ${program} ${arg_UNPARSED_ARGUMENTS} ENVIRONMENT ${arg_ENVIRONMENT})
  endforeach()
endfunction()
