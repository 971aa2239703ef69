# What a build for Windows needs beside the rest. The programs are to run anywhere as they are: nothing but the system's
# own libraries is imported.
target_compile_definitions(project_options INTERFACE WIN32_LEAN_AND_MEAN NOMINMAX UNICODE _UNICODE _WIN32_WINNT=0x0A00)
target_link_options(project_options INTERFACE -static)
# The server's unit has more sections than an object file usually holds.
target_compile_options(project_options INTERFACE -Wa,-mbig-obj)
