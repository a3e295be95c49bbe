# Makes CMake find Homebrew's libcurl, and the OpenSSL that it is built with. The system's libcurl uses
# another TLS library; Brimlet passes libcurl's TLS sessions to OpenSSL, so both must use the same one.
find_program(BREW_PROGRAM brew)
if(BREW_PROGRAM)
  # brimlet_brew(VARIABLE ARGUMENT...): the output of brew.
  function(brimlet_brew variable)
    execute_process(COMMAND ${BREW_PROGRAM} ${ARGN}
      OUTPUT_VARIABLE said OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    set(${variable} "${said}" PARENT_SCOPE)
  endfunction()

  brimlet_brew(curl --prefix curl)
  brimlet_brew(needed deps --direct curl)
  if(NOT needed MATCHES "(^|\n)(openssl@[0-9.]+)(\n|$)")
    message(FATAL_ERROR "Homebrew's curl needs no OpenSSL that is known here, but: ${needed}")
  endif()
  brimlet_brew(openssl --prefix ${CMAKE_MATCH_2})
  list(PREPEND CMAKE_PREFIX_PATH ${curl} ${openssl})
  set(OPENSSL_ROOT_DIR ${openssl})
endif()
