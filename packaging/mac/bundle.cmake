# Makes the application bundle Brimlet.app of a program, with its icon and information property list.
set(BRIMLET_MAC_FOLDER ${CMAKE_CURRENT_LIST_DIR})

# brimlet_xml_text(VARIABLE TEXT): the text escaped for an XML element. CMake substitutes variables in the
# list again when it makes the bundle, so $ and @ are escaped too.
function(brimlet_xml_text variable text)
  string(REPLACE "&" "&amp;" text "${text}")
  string(REPLACE "<" "&lt;" text "${text}")
  string(REPLACE ">" "&gt;" text "${text}")
  string(REPLACE "$" "&#36;" text "${text}")
  string(REPLACE "@" "&#64;" text "${text}")
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()

# brimlet_mac_info_plist(FILE EXECUTABLE IDENTIFIER): writes the list. The service root is in it only where one is
# configured; otherwise the program uses its default.
function(brimlet_mac_info_plist file executable identifier)
  if(NOT CMAKE_OSX_DEPLOYMENT_TARGET)
    message(FATAL_ERROR "CMAKE_OSX_DEPLOYMENT_TARGET must say which macOS the application is for")
  endif()
  file(STRINGS ${BRIMLET_MAC_FOLDER}/../../LICENSE copyright REGEX "^Copyright " LIMIT_COUNT 1)
  brimlet_xml_text(copyright "${copyright}")
  set(service "")
  if(BRIMLET_API_URL)
    brimlet_xml_text(url "${BRIMLET_API_URL}")
    set(service "\t<key>BrimletAPIURL</key>\n\t<string>${url}</string>\n")
  endif()
  configure_file(${BRIMLET_MAC_FOLDER}/Info.plist.in ${file} @ONLY)
endfunction()

# brimlet_mac_helper(TARGET HELPER): puts another program into the bundle of a target, for it to start.
function(brimlet_mac_helper target helper)
  set_target_properties(${helper} PROPERTIES BUILD_RPATH @executable_path/../Frameworks)
  set(folder $<TARGET_FILE_DIR:${target}>/../Helpers)
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
    COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:${helper}> ${folder}
    VERBATIM)
  add_dependencies(${target} ${helper})
endfunction()

# brimlet_mac_bundle(TARGET NAME IDENTIFIER): makes build/…/bin/NAME.app. CMake gives a bundle and its program
# the same name.
function(brimlet_mac_bundle target name identifier)
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/${name}.bundle)
  brimlet_mac_info_plist(${folder}/Info.plist ${name} ${identifier})

  set(drawing ${BRIMLET_MAC_FOLDER}/../icons/app.brimlet.host.svg)
  add_custom_command(OUTPUT ${folder}/brimlet.icns
    COMMAND ${BRIMLET_MAC_FOLDER}/make-icns ${drawing} ${folder}/brimlet.icns
    DEPENDS ${BRIMLET_MAC_FOLDER}/make-icns ${drawing}
    VERBATIM)
  set(license ${BRIMLET_MAC_FOLDER}/../../LICENSE)
  target_sources(${target} PRIVATE ${folder}/brimlet.icns ${license})
  set_source_files_properties(${folder}/brimlet.icns ${license} PROPERTIES
    MACOSX_PACKAGE_LOCATION Resources)

  # script/package-mac copies the libraries to this folder.
  set_target_properties(${target} PROPERTIES
    BUILD_RPATH @executable_path/../Frameworks
    OUTPUT_NAME ${name}
    MACOSX_BUNDLE ON
    MACOSX_BUNDLE_INFO_PLIST ${folder}/Info.plist)
endfunction()
