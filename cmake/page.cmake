# The pages are bundled by ui/build.mjs and embedded into the programs as byte arrays, so that a program is one file.
# page_assets: the panels' page. bench_assets: the virtual cockpit's page.
find_program(NODE NAMES node nodejs REQUIRED)
find_program(NPM npm REQUIRED)

set(page_modules ${CMAKE_SOURCE_DIR}/ui/node_modules/.package-lock.json)
add_custom_command(
  OUTPUT ${page_modules}
  COMMAND ${NPM} ci --no-audit --no-fund --loglevel=error
  DEPENDS ${CMAKE_SOURCE_DIR}/ui/package-lock.json
  WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}/ui
  COMMENT "Installing the page's npm modules")

file(GLOB_RECURSE page_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/ui/src/*)
set(page_folder ${CMAKE_BINARY_DIR}/page)
add_custom_command(
  OUTPUT ${page_folder}/page_assets.cpp ${page_folder}/bench_assets.cpp
  COMMAND ${NODE} build.mjs ${page_folder}
  DEPENDS ${page_modules} ${page_sources} ${CMAKE_SOURCE_DIR}/ui/build.mjs
  WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}/ui
  COMMENT "Bundling the pages")

add_library(page_assets STATIC ${page_folder}/page_assets.cpp)
add_library(bench_assets STATIC ${page_folder}/bench_assets.cpp)
# One step makes both files.
add_dependencies(bench_assets page_assets)
foreach(assets page_assets bench_assets)
  target_include_directories(${assets} PRIVATE ${CMAKE_SOURCE_DIR}/src)
endforeach()
