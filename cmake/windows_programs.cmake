# Windows decides by the program's file whether it has a console, so there are two: tavlo.exe opens
# windows and none of a console; tavlo.com, which a command line takes first, writes to the console
# and is waited for. Everything else is the same.
enable_language(RC)
set(resources ${CMAKE_SOURCE_DIR}/packaging/tavlo.rc)
target_sources(tavlo PRIVATE ${resources})
set_target_properties(tavlo PROPERTIES SUFFIX .com)
add_executable(tavlo_window WIN32 src/main.cpp ${resources})
set_target_properties(tavlo_window PROPERTIES OUTPUT_NAME tavlo)
target_link_libraries(tavlo_window PRIVATE tavlo_options ${TAVLO_ROOMS})
