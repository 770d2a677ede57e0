# How our own code is compiled; third-party code does not get these.
find_package(Threads REQUIRED)
add_library(tavlo_options INTERFACE)
target_include_directories(tavlo_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_options(tavlo_options INTERFACE -Wall -Wextra -Wconversion -Werror)
target_compile_definitions(tavlo_options INTERFACE TAVLO_VERSION="${PROJECT_VERSION}")
target_link_libraries(tavlo_options INTERFACE Threads::Threads)
if(WIN32)
    target_compile_definitions(tavlo_options INTERFACE
        UNICODE _UNICODE _WIN32_WINNT=0x0601 WIN32_LEAN_AND_MEAN NOMINMAX)
endif()

# Takes the other system's sources (X_windows.cpp, X_posix_test.cpp ...) out of a list.
function(tavlo_drop_other_system list_name)
    if(WIN32)
        list(FILTER ${list_name} EXCLUDE REGEX "_posix(_test)?\\.cpp$")
    else()
        list(FILTER ${list_name} EXCLUDE REGEX "_windows(_test)?\\.cpp$")
    endif()
    set(${list_name} ${${list_name}} PARENT_SCOPE)
endfunction()

# Library tavlo_<name> from src/<name>/*.cpp standing on the rooms named after it. A room
# without a folder is passed over; TAVLO_ROOMS lists those made.
function(tavlo_room name)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${name}/*.cpp)
    tavlo_drop_other_system(sources)
    if(NOT sources)
        return()
    endif()
    add_library(tavlo_${name} STATIC ${sources})
    target_link_libraries(tavlo_${name} PUBLIC tavlo_options)
    foreach(lower IN LISTS ARGN)
        if(TARGET tavlo_${lower})
            target_link_libraries(tavlo_${name} PUBLIC tavlo_${lower})
        endif()
    endforeach()
    set(TAVLO_ROOMS ${TAVLO_ROOMS} tavlo_${name} PARENT_SCOPE)
endfunction()
