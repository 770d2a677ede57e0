# The window toolkit as a target `tavlo_wx`: this system's own, or for Windows the one that
# windows_wx.sh builds once.
if(CMAKE_CROSSCOMPILING)
    execute_process(COMMAND ${CMAKE_SOURCE_DIR}/cmake/windows_wx.sh
        OUTPUT_VARIABLE wx_folder OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    # The folder was moved to its place: what wx-config remembers of it does not hold.
    file(GLOB wx_script ${wx_folder}/lib/wx/config/*)
    set(wx_config ${wx_script} --prefix=${wx_folder} --exec-prefix=${wx_folder} --static=yes)
else()
    set(wx_config wx-config --toolkit=gtk3)
endif()

# What wx-config says for an option, as a list.
function(tavlo_ask_wx variable)
    execute_process(COMMAND ${wx_config} ${ARGN}
        OUTPUT_VARIABLE answer OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    separate_arguments(answer UNIX_COMMAND "${answer}")
    set(${variable} ${answer} PARENT_SCOPE)
endfunction()

tavlo_ask_wx(wx_flags --cxxflags core base)
tavlo_ask_wx(wx_libraries --libs core base)
list(TRANSFORM wx_flags REPLACE "^-I" "-isystem")
list(FILTER wx_flags EXCLUDE REGEX "^-(mwindows|pthread)")
list(REMOVE_ITEM wx_libraries -mwindows)
add_library(tavlo_wx INTERFACE)
target_compile_options(tavlo_wx INTERFACE ${wx_flags})
target_link_libraries(tavlo_wx INTERFACE ${wx_libraries})
