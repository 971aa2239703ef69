# The three programs. Each has its main.cpp in its own folder; the control program's on Windows is windows_main.cpp.
if(WIN32)
  # Without a console window; simhost has one, where it takes its commands.
  add_executable(cockpit WIN32 ${CMAKE_SOURCE_DIR}/src/app/windows_main.cpp)
  target_link_options(cockpit PRIVATE -municode)
else()
  add_executable(cockpit ${CMAKE_SOURCE_DIR}/src/app/main.cpp)
  add_executable(bench ${CMAKE_SOURCE_DIR}/bench/main.cpp)
  target_link_libraries(bench PRIVATE bench_core bench_assets)
endif()
target_link_libraries(cockpit PRIVATE cockpit_app page_assets)
add_executable(simhost ${CMAKE_SOURCE_DIR}/simhost/main.cpp)
target_link_libraries(simhost PRIVATE simhost_core cockpit_native)
