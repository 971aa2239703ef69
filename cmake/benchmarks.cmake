# Runs on both systems.
add_executable(link_figures ${CMAKE_SOURCE_DIR}/benchmarks/link_figures.cpp)
target_link_libraries(link_figures PRIVATE cockpit_native)
if(WIN32)
  return()
endif()

find_package(benchmark REQUIRED)
# benchmarks/<name>_benchmark.cpp becomes benchmark_<name>.
file(GLOB benchmark_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/benchmarks/*_benchmark.cpp)
foreach(source ${benchmark_sources})
  get_filename_component(name ${source} NAME_WE)
  string(REGEX REPLACE "_benchmark$" "" name ${name})
  add_executable(benchmark_${name} ${source})
  target_link_libraries(benchmark_${name} PRIVATE cockpit_app cockpit_manual bench_devices simhost_core page_assets benchmark::benchmark)
endforeach()
