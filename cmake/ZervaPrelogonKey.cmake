# The key that signs client data before logon: 64 bytes that the server side knows, too. They are
# read from a file when the build is configured, and are never part of the sources.

# zerva_write_prelogon_key(KEY_FILE HEADER): HEADER becomes the bytes of KEY_FILE as the members of
# an array. With an empty KEY_FILE they are the development key, which every reader of this knows.
function(zerva_write_prelogon_key key_file header)
  if(key_file STREQUAL "")
    string(CONCAT development_key "DEVELOPMENT KEY: NO SECRET, NOT FOR USE. "
                                  "ZERVA_PRELOGON_KEY_FILE")
    string(HEX "${development_key}" hex)
    message(WARNING "No ZERVA_PRELOGON_KEY_FILE: client data is signed with the development key")
  elseif(NOT EXISTS "${key_file}" OR IS_DIRECTORY "${key_file}")
    message(FATAL_ERROR "ZERVA_PRELOGON_KEY_FILE: there is no file ${key_file}")
  else()
    file(READ "${key_file}" hex HEX)
  endif()
  string(LENGTH "${hex}" digits)
  math(EXPR length "${digits} / 2")
  if(NOT length EQUAL 64)
    message(FATAL_ERROR
              "ZERVA_PRELOGON_KEY_FILE: ${key_file} holds ${length} bytes; a key has exactly 64")
  endif()
  string(REGEX REPLACE "(..)" "0x\\1," members "${hex}")
  file(CONFIGURE OUTPUT "${header}" CONTENT "${members}\n" @ONLY)
endfunction()

# zerva_prelogon_key(TARGET KEY_FILE): what TARGET compiles of the signer carries this key.
function(zerva_prelogon_key target key_file)
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/${target}_key")
  zerva_write_prelogon_key("${key_file}" "${folder}/prelogon_key.inc")
  target_include_directories(${target} PRIVATE "${folder}")
  if(NOT key_file STREQUAL "")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${key_file}")
  endif()
endfunction()
