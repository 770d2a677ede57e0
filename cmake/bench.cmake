# Each bench/<name>.cpp is a program bench_<name>; the peer that we measure against is linked only
# here.
find_package(PkgConfig REQUIRED)
pkg_check_modules(TAGLIB REQUIRED IMPORTED_TARGET taglib)
file(GLOB measurements CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/bench/*.cpp)
foreach(source IN LISTS measurements)
    get_filename_component(name ${source} NAME_WE)
    add_executable(bench_${name} ${source})
    target_include_directories(bench_${name} PRIVATE ${CMAKE_SOURCE_DIR})
    target_link_libraries(bench_${name} PRIVATE tavlo_options ${TAVLO_ROOMS} PkgConfig::TAGLIB)
endforeach()
