# The bundle as a folder and an archive: the same for every processor.

zerva_bundle_test(
  check_bundle "${sandbox}" -- python3 -B
  "${CMAKE_CURRENT_SOURCE_DIR}/bundle/check_bundle_test.py" "${bundle}"
  "${PROJECT_SOURCE_DIR}/scripts/check-bundle")

set(copy "${CMAKE_CURRENT_BINARY_DIR}/in another folder")
zerva_bundle_test(bundle_is_reproducible "${CMAKE_CURRENT_SOURCE_DIR}/bundle/reproducible_test.sh"
                  "${PROJECT_SOURCE_DIR}" "${copy}")
set_tests_properties(macho.bundle_is_reproducible PROPERTIES TIMEOUT 600 FIXTURES_SETUP bundle_copy)
zerva_bundle_test(
  bundle_options python3 -B "${CMAKE_CURRENT_SOURCE_DIR}/bundle/bundle_options_test.py" "${copy}"
  "${PROJECT_SOURCE_DIR}/build/zig-cache")
set_tests_properties(macho.bundle_options PROPERTIES FIXTURES_REQUIRED "macos_bundle;bundle_copy"
                                                     TIMEOUT 600)

add_test(NAME macho.missing_tools
         COMMAND "${sandbox}" -- python3 -B
                 "${CMAKE_CURRENT_SOURCE_DIR}/bundle/missing_tools_test.py" "${PROJECT_SOURCE_DIR}")
set_tests_properties(macho.missing_tools PROPERTIES LABELS macho)

set(archive "${PROJECT_SOURCE_DIR}/build/bundle/zerva-ssl-vpn-plugin-1.0.0.tar.gz")
set(install_test python3 -B "${CMAKE_CURRENT_SOURCE_DIR}/packaging/install_test.py" "${archive}")
zerva_bundle_test(installs_for_all_users "${sandbox}" -- ${install_test})
zerva_bundle_test(installs_for_one_user "${sandbox}" --user -- ${install_test})
