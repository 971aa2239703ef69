# The pages are built by ui/build.mjs (esbuild) and embedded into the programs as byte arrays, so that a program is one file.
# page_assets: the panels' page. bench_assets: the virtual cockpit's page.
add_library(page_assets INTERFACE)
add_library(bench_assets INTERFACE)
