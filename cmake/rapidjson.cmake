# The headers are the same for every system, but /usr/include as a whole must not get into a cross
# build: only this one folder is shown to it, through a link.
find_path(RAPIDJSON_PARENT rapidjson/document.h PATHS /usr/include
    NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/include)
file(CREATE_LINK ${RAPIDJSON_PARENT}/rapidjson ${CMAKE_BINARY_DIR}/include/rapidjson SYMBOLIC)
add_library(rapidjson INTERFACE)
target_include_directories(rapidjson SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/include)
