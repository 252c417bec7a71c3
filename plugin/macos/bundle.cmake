# Makes nevo_plugin the bundle that browsers on macOS load.

set(ZERVA_BUNDLE_VERSION 1.0.0 CACHE STRING "The bundle's version: one to three numbers with dots")
if(NOT ZERVA_BUNDLE_VERSION MATCHES "^[0-9]+(\\.[0-9]+)?(\\.[0-9]+)?$")
  message(FATAL_ERROR "ZERVA_BUNDLE_VERSION is '${ZERVA_BUNDLE_VERSION}'; macOS wants one to three"
                      " numbers with dots between them, such as 1.2.3")
endif()
set(bundle_name "Zerva SSL VPN Plugin")

# The texts come from the header that the code shows them from.
set(identity "${CMAKE_CURRENT_SOURCE_DIR}/plugin_identity.h")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${identity}")
function(read_identity constant result)
  file(STRINGS "${identity}" line REGEX "constexpr char ${constant}\\[\\] = \"")
  if(NOT line MATCHES "\"([^\"]+)\"")
    message(FATAL_ERROR "${identity}: ${constant} is not one literal on one line")
  endif()
  set(${result} "${CMAKE_MATCH_1}" PARENT_SCOPE)
endfunction()
read_identity(kName plugin_name)
read_identity(kDescription plugin_description)
read_identity(kMimeDescription mime)
string(REPLACE ":" ";" mime "${mime}")
list(GET mime 0 mime_type)
list(GET mime 1 mime_suffix)
list(GET mime 2 mime_description)

configure_file(macos/Info.plist.in Info.plist @ONLY)
set_target_properties(
  nevo_plugin
  PROPERTIES BUNDLE ON
             BUNDLE_EXTENSION plugin
             OUTPUT_NAME "${bundle_name}"
             MACOSX_BUNDLE_INFO_PLIST "${CMAKE_CURRENT_BINARY_DIR}/Info.plist")
# Stripping drops the local symbols, and code that nobody calls with all that it would import.
target_link_options(
  nevo_plugin PRIVATE
  "LINKER:-exported_symbols_list,${CMAKE_CURRENT_SOURCE_DIR}/macos/exports.txt"
  LINKER:-dead_strip LINKER:-x LINKER:-S)
set_property(TARGET nevo_plugin APPEND PROPERTY LINK_DEPENDS
             "${CMAKE_CURRENT_SOURCE_DIR}/macos/exports.txt")
# Where the plug-in looks for the service program, which the product's packaging puts there.
add_custom_command(
  TARGET nevo_plugin POST_BUILD
  COMMAND "${CMAKE_COMMAND}" -E make_directory
          "$<TARGET_BUNDLE_CONTENT_DIR:nevo_plugin>/Helpers")
