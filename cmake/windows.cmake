# What a build for Windows needs beside the rest. The programs are to run anywhere as they are: nothing but the system's
# own libraries is imported.
target_compile_definitions(project_options INTERFACE WIN32_LEAN_AND_MEAN NOMINMAX UNICODE _UNICODE _WIN32_WINNT=0x0A00)
target_link_options(project_options INTERFACE -static)
# The server's unit has more sections than an object file usually holds.
target_compile_options(project_options INTERFACE -Wa,-mbig-obj)

# What the Explorer shows of a program: icon, description, version.
enable_language(RC)
find_program(NODE NAMES node nodejs REQUIRED)
set(packaging ${CMAKE_SOURCE_DIR}/packaging/windows)
set(icon ${CMAKE_BINARY_DIR}/resources/cockpit.ico)
add_custom_command(
  OUTPUT ${icon}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/resources
  COMMAND ${NODE} ${packaging}/make_icon.mjs ${icon}
  DEPENDS ${packaging}/make_icon.mjs
  COMMENT "Drawing the icon")
add_custom_target(program_icon DEPENDS ${icon})

# cockpit_resources(program) adds packaging/windows/<program>.rc to a program.
function(cockpit_resources program)
  set(script ${packaging}/${program}.rc)
  target_sources(${program} PRIVATE ${script})
  set_source_files_properties(${script} PROPERTIES
    COMPILE_OPTIONS "-I${CMAKE_BINARY_DIR}/resources;-I${packaging}" OBJECT_DEPENDS "${icon};${packaging}/program.manifest")
  add_dependencies(${program} program_icon)
endfunction()
