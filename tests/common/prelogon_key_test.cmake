# How the build takes the key that client data is signed with, and where the key ends up.
#
#   cmake -D MODULES=cmake -D ARCHIVE=libzerva_common.a -D PLUGIN=nevo_plugin.so
#         -D HEADER=prelogon_key.inc -D WORK=FOLDER -D AR=ar -D NM=nm -P prelogon_key_test.cmake

# The script calls itself for the one thing that may end a script.
if(DEFINED WRITE)
  include("${MODULES}/ZervaPrelogonKey.cmake")
  zerva_write_prelogon_key("${KEY_FILE}" "${WRITE}")
  return()
endif()

function(write_header key_file header)
  execute_process(
    COMMAND "${CMAKE_COMMAND}" "-DMODULES=${MODULES}" "-DKEY_FILE=${key_file}" "-DWRITE=${header}"
            -P "${CMAKE_CURRENT_FUNCTION_LIST_FILE}"
    RESULT_VARIABLE status
    ERROR_VARIABLE said)
  string(REGEX REPLACE "[ \n]+" " " said "${said}")
  set(status "${status}" PARENT_SCOPE)
  set(said "${said}" PARENT_SCOPE)
endfunction()

function(expect_refused key_file reason)
  write_header("${key_file}" "${WORK}/refused.inc")
  if(status EQUAL 0)
    message(SEND_ERROR "${key_file} was taken")
  elseif(NOT said MATCHES "ZERVA_PRELOGON_KEY_FILE: ${reason}")
    message(SEND_ERROR "${key_file} was refused with: ${said}")
  elseif(EXISTS "${WORK}/refused.inc")
    message(SEND_ERROR "${key_file} was refused and used")
  endif()
endfunction()

function(expect_header header members)
  file(READ "${header}" written)
  if(NOT written STREQUAL "${members}\n")
    message(SEND_ERROR "${header} holds ${written}")
  endif()
endfunction()

file(REMOVE_RECURSE "${WORK}")
file(MAKE_DIRECTORY "${WORK}/objects")

# A file of any other length than 64 bytes, or none where one is named, ends the configuration.
foreach(length 0 1 63 65 128)
  string(REPEAT "k" ${length} text)
  file(WRITE "${WORK}/key${length}" "${text}")
  expect_refused("${WORK}/key${length}" ".*key${length} holds ${length} bytes; a key has exactly 64")
endforeach()
expect_refused("${WORK}/missing" "there is no file .*missing")
expect_refused("${WORK}" "there is no file ")

# Every byte is taken as it is.
string(REPEAT "\\000\\377\\012\\073" 16 bytes)
execute_process(COMMAND printf "${bytes}" OUTPUT_FILE "${WORK}/binary")
write_header("${WORK}/binary" "${WORK}/binary.inc")
string(REPEAT "0x00,0xff,0x0a,0x3b," 16 members)
expect_header("${WORK}/binary.inc" "${members}")
if(NOT said STREQUAL "")
  message(SEND_ERROR "a good key was remarked on: ${said}")
endif()

# Without a file it is the development key, which says so, and the build warns.
write_header("" "${WORK}/development.inc")
if(NOT status EQUAL 0 OR NOT said MATCHES "Warning.*No ZERVA_PRELOGON_KEY_FILE: client data is sign")
  message(SEND_ERROR "the development key was taken with: ${said}")
endif()
string(HEX "DEVELOPMENT KEY: NO SECRET, NOT FOR USE. ZERVA_PRELOGON_KEY_FILE" hex)
string(REGEX REPLACE "(..)" "0x\\1," members "${hex}")
expect_header("${WORK}/development.inc" "${members}")

# The library carries the key in one object file, under no name that others can link to. Compilers
# may work the masks of the signature in, so the key's start is looked for in all its forms.
file(READ "${HEADER}" members)
string(REGEX MATCHALL "0x.." members "${members}")
list(SUBLIST members 0 8 start)
set(forms "")
foreach(mask 0x00 0x36 0x5c)
  set(form "")
  foreach(member IN LISTS start)
    math(EXPR masked "(${member} ^ ${mask}) + 0x100" OUTPUT_FORMAT HEXADECIMAL)
    string(SUBSTRING "${masked}" 3 2 masked)
    string(APPEND form "${masked}")
  endforeach()
  list(APPEND forms "${form}")
endforeach()
list(JOIN forms "|" key)
execute_process(COMMAND "${AR}" x "${ARCHIVE}" WORKING_DIRECTORY "${WORK}/objects"
                COMMAND_ERROR_IS_FATAL ANY)
file(GLOB objects "${WORK}/objects/*")
set(holders "")
foreach(object IN LISTS objects)
  file(READ "${object}" content HEX)
  if(content MATCHES "${key}")
    cmake_path(GET object FILENAME name)
    list(APPEND holders "${name}")
  endif()
endforeach()
if(NOT holders STREQUAL "ClientData.cpp.o")
  message(SEND_ERROR "the key is in: ${holders}")
endif()
execute_process(COMMAND "${NM}" --extern-only "${ARCHIVE}" OUTPUT_VARIABLE symbols ERROR_QUIET
                COMMAND_ERROR_IS_FATAL ANY)
if(symbols MATCHES "prelogon_preshared_key")
  message(SEND_ERROR "the key has a name that can be linked to")
endif()

# The plug-in signs nothing: whoever takes its module apart finds no key, by its bytes or by name.
file(READ "${PLUGIN}" content HEX)
if(content MATCHES "${key}")
  message(SEND_ERROR "the key is in the plug-in's module")
endif()
execute_process(COMMAND "${NM}" "${PLUGIN}" OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
if(NOT symbols MATCHES " T NP_Initialize")
  message(SEND_ERROR "the plug-in's module shows no symbols to look through")
elseif(symbols MATCHES "prelogon_preshared_key|signMessage")
  message(SEND_ERROR "the plug-in's module has the key or its signer")
endif()
