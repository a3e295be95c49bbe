# Makes CMake find Homebrew's libcurl, and the OpenSSL that it is built with. The system's libcurl uses
# another TLS library; Brimlet passes libcurl's TLS sessions to OpenSSL, so both must use the same one.
find_program(BREW_PROGRAM brew)
if(APPLE AND NOT BREW_PROGRAM)
  message(FATAL_ERROR "This needs Homebrew's libcurl: install Homebrew (https://brew.sh), then script/bootstrap")
endif()
if(BREW_PROGRAM)
  # brimlet_output(VARIABLE PROGRAM ARGUMENT...): what the program prints.
  function(brimlet_output variable)
    execute_process(COMMAND ${ARGN}
      OUTPUT_VARIABLE said OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    set(${variable} "${said}" PARENT_SCOPE)
  endfunction()

  brimlet_output(curl ${BREW_PROGRAM} --prefix curl)
  brimlet_output(needed ${BREW_PROGRAM} deps --direct curl)
  if(NOT needed MATCHES "(^|\n)(openssl@[0-9.]+)(\n|$)")
    message(FATAL_ERROR "Homebrew's curl needs no OpenSSL that is known here, but: ${needed}")
  endif()
  brimlet_output(openssl ${BREW_PROGRAM} --prefix ${CMAKE_MATCH_2})

  # Other users' Macs have none of the authorities' files that Homebrew's libraries know of. libcurl asks macOS
  # about all certificates that OpenSSL refuses from this version on, if it was built to.
  brimlet_output(version ${curl}/bin/curl-config --version)
  string(REGEX MATCH "[0-9]+\\.[0-9]+\\.[0-9]+" version "${version}")
  if(version VERSION_LESS 8.18.0)
    message(FATAL_ERROR "Homebrew's libcurl is ${version}, and 8.18.0 is needed: brew upgrade curl")
  endif()
  brimlet_output(features ${curl}/bin/curl-config --features)
  if(NOT features MATCHES "(^|\n)AppleSecTrust(\n|$)")
    message(FATAL_ERROR "Homebrew's libcurl ${version} is built without AppleSecTrust, "
      "so it cannot ask macOS about certificates")
  endif()

  list(PREPEND CMAKE_PREFIX_PATH ${curl} ${openssl})
  set(OPENSSL_ROOT_DIR ${openssl})
endif()
