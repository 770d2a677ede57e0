set(INSTALL_GTEST OFF)
add_subdirectory(/usr/src/googletest/googletest googletest EXCLUDE_FROM_ALL SYSTEM)

# One executable for all rooms: it links once, and starting a program is slow under Wine.
file(GLOB_RECURSE test_sources CONFIGURE_DEPENDS
    ${CMAKE_SOURCE_DIR}/tests/*_test.cpp ${CMAKE_SOURCE_DIR}/tests/support/*.cpp)
list(FILTER test_sources EXCLUDE REGEX "/support/child/")
tavlo_drop_other_system(test_sources)
add_executable(tavlo_tests ${test_sources})
target_include_directories(tavlo_tests PRIVATE ${CMAKE_SOURCE_DIR}/tests)
target_compile_definitions(tavlo_tests PRIVATE
    TAVLO_SOURCE_DIR="${CMAKE_SOURCE_DIR}" TAVLO_CHILD="$<TARGET_FILE:tavlo_child>")
target_precompile_headers(tavlo_tests PRIVATE <gtest/gtest.h>)
target_link_libraries(tavlo_tests PRIVATE tavlo_options ${TAVLO_ROOMS} rapidjson gtest gtest_main)

# A stand-in for programs that ours starts. Sanitizers would only make its start slow.
file(GLOB child_sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/support/child/*.cpp)
tavlo_drop_other_system(child_sources)
add_executable(tavlo_child ${child_sources})
target_link_libraries(tavlo_child PRIVATE tavlo_options)
if(WIN32)
    target_link_options(tavlo_child PRIVATE -municode)
else()
    target_compile_options(tavlo_child PRIVATE -fno-sanitize=all)
    target_link_options(tavlo_child PRIVATE -fno-sanitize=all)
endif()
add_dependencies(tavlo_tests tavlo_child)

if(CMAKE_CROSSCOMPILING)
    set(system windows)
    set(program ${CMAKE_BINARY_DIR}/tavlo.sh)
    file(GENERATE OUTPUT ${program} INPUT ${CMAKE_SOURCE_DIR}/cmake/tavlo.sh.in
        USE_SOURCE_PERMISSIONS)
else()
    set(system native)
    set(program $<TARGET_FILE:tavlo>)
endif()

# Two shards keep two cores busy; each test case runs in one of them.
set(shards 2)
math(EXPR last "${shards} - 1")
foreach(shard RANGE ${last})
    add_test(NAME ${system}.unit.${shard} COMMAND tavlo_tests --gtest_brief=1
        WORKING_DIRECTORY ${CMAKE_SOURCE_DIR})
    set_tests_properties(${system}.unit.${shard} PROPERTIES
        TIMEOUT 300
        FAIL_REGULAR_EXPRESSION " 0 tests from 0 test suites ran"
        ENVIRONMENT "GTEST_TOTAL_SHARDS=${shards};GTEST_SHARD_INDEX=${shard}")
endforeach()

# Whole-program tests: scripts that run "$TAVLO" in the project's folder; 77 means left out.
# "$TAVLO_CHILD" is the stand-in, to be copied under the names of other programs.
# Their settings are kept apart from the user's.
set(settings ${CMAKE_BINARY_DIR}/settings)
file(GLOB scripts CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/cli/*.sh)
foreach(script IN LISTS scripts)
    get_filename_component(name ${script} NAME_WE)
    add_test(NAME ${system}.cli.${name} COMMAND bash ${script}
        WORKING_DIRECTORY ${CMAKE_SOURCE_DIR})
    set_tests_properties(${system}.cli.${name} PROPERTIES
        TIMEOUT 120
        SKIP_RETURN_CODE 77
        ENVIRONMENT "TAVLO=${program};TAVLO_SYSTEM=${system};XDG_CONFIG_HOME=${settings};\
TAVLO_CHILD=$<TARGET_FILE:tavlo_child>")
endforeach()

# The real window on a screen of its own; its pictures stay in the build's folder. What libraries of
# the system leak is not looked for.
add_executable(tavlo_drag_source EXCLUDE_FROM_ALL tests/window/drag_source.cpp)
target_link_libraries(tavlo_drag_source PRIVATE tavlo_wx)
if(CMAKE_CROSSCOMPILING)
    set(drag ${CMAKE_SOURCE_DIR}/build/test/tavlo_drag_source)
else()
    set(drag $<TARGET_FILE:tavlo_drag_source>)
    set_target_properties(tavlo_drag_source PROPERTIES EXCLUDE_FROM_ALL OFF)
endif()
add_test(NAME ${system}.window COMMAND bash ${CMAKE_SOURCE_DIR}/tests/window/smoke.sh
    WORKING_DIRECTORY ${CMAKE_SOURCE_DIR})
set_tests_properties(${system}.window PROPERTIES
    TIMEOUT 400
    SKIP_RETURN_CODE 77
    RUN_SERIAL ON
    ENVIRONMENT "TAVLO=${program};TAVLO_SYSTEM=${system};TAVLO_DRAG=${drag};\
TAVLO_PICTURES=${CMAKE_BINARY_DIR}/pictures;ASAN_OPTIONS=detect_leaks=0")
