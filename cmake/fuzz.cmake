set(TAVLO_FUZZ_SECONDS 5 CACHE STRING "Longest time that a test run gives one fuzz target")
set(TAVLO_LONG_FUZZ_SECONDS 180 CACHE STRING "The same for ./test --long")
find_program(PYTHON3 python3 REQUIRED)

# Inputs that are made, not kept; those of real files only where that folder is there.
set(seeds ${CMAKE_BINARY_DIR}/seeds)
add_custom_command(OUTPUT ${seeds}/made
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${seeds}/made
    COMMAND ${PYTHON3} ${CMAKE_SOURCE_DIR}/fuzz/make_corpus.py --seeds ${seeds}
        ${CMAKE_SOURCE_DIR}/../shared/corpus
    COMMAND ${CMAKE_COMMAND} -E touch ${seeds}/made
    DEPENDS ${CMAKE_SOURCE_DIR}/fuzz/make_corpus.py ${CMAKE_SOURCE_DIR}/fuzz/tag_bytes.py)
add_custom_target(fuzz_seeds ALL DEPENDS ${seeds}/made)

# Each fuzz/<name>.cpp is a program; its kept inputs lie in fuzz/corpus/<name>, new ones go to
# build/fuzz/found/<name>. An input has up to 1 MB and 10 seconds, or it counts as a hang.
file(GLOB targets CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/fuzz/*.cpp)
foreach(source IN LISTS targets)
    get_filename_component(name ${source} NAME_WE)
    set(found ${CMAKE_BINARY_DIR}/found/${name})
    set(kept ${CMAKE_SOURCE_DIR}/fuzz/corpus/${name})
    file(MAKE_DIRECTORY ${found} ${kept} ${seeds}/small/${name} ${seeds}/large/${name})
    add_executable(fuzz_${name} ${source})
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
    target_include_directories(fuzz_${name} PRIVATE ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/tests)
    target_link_libraries(fuzz_${name} PRIVATE tavlo_options ${TAVLO_ROOMS})
    set(arguments -max_len=1048576 -timeout=10 -rss_limit_mb=2048 -verbosity=0
        -artifact_prefix=${CMAKE_BINARY_DIR}/${name}- ${found} ${kept} ${seeds}/small/${name})
    add_test(NAME fuzz.${name} WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
        COMMAND fuzz_${name} -max_total_time=${TAVLO_FUZZ_SECONDS} -seed=1 ${arguments})
    # Of these the seed differs each time: they are to find what no run has found yet.
    add_test(NAME long.fuzz.${name} CONFIGURATIONS Long WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}
        COMMAND fuzz_${name} -max_total_time=${TAVLO_LONG_FUZZ_SECONDS} ${arguments}
            ${seeds}/large/${name})
endforeach()
