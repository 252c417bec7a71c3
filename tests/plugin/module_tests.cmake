# The tests that drive a module through its three functions, of whatever kind the module is: first
# what depends on nothing outside of it, then what the service's process, its port and the user's
# files have a part in.
set(plugin_module_tests entry_points initialize parameters soak stream)
set(plugin_service_tests
    decision
    real_log
    real_log_settings
    relay
    relay_lifetime
    relay_logging
    relay_step
    scriptable
    service_socket)
foreach(list plugin_module_tests plugin_service_tests)
  list(TRANSFORM ${list} PREPEND "${CMAKE_CURRENT_LIST_DIR}/")
  list(TRANSFORM ${list} APPEND _test.cpp)
endforeach()
