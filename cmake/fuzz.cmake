set(TAVLO_FUZZ_SECONDS 5 CACHE STRING "Longest time that a test run gives one fuzz target")

# Each fuzz/<name>.cpp is a program; its kept inputs lie in fuzz/corpus/<name>, new ones go to
# build/fuzz/found/<name>.
file(GLOB targets CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/fuzz/*.cpp)
foreach(source IN LISTS targets)
    get_filename_component(name ${source} NAME_WE)
    set(found ${CMAKE_BINARY_DIR}/found/${name})
    set(kept ${CMAKE_SOURCE_DIR}/fuzz/corpus/${name})
    file(MAKE_DIRECTORY ${found} ${kept})
    add_executable(fuzz_${name} ${source})
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
    target_include_directories(fuzz_${name} PRIVATE ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/tests)
    target_link_libraries(fuzz_${name} PRIVATE tavlo_options ${TAVLO_ROOMS})
    add_test(NAME fuzz.${name} COMMAND fuzz_${name}
        -max_total_time=${TAVLO_FUZZ_SECONDS} -timeout=10 -rss_limit_mb=2048 -verbosity=0
        -seed=1 -artifact_prefix=${CMAKE_BINARY_DIR}/${name}- ${found} ${kept}
        WORKING_DIRECTORY ${CMAKE_SOURCE_DIR})
endforeach()
