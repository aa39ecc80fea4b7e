# The report program tells by the name under which it finds the settings program beside it which kind of installation
# it belongs to, and by that which database a settings appointment from another machine may name: the one in the
# user's folder "My Hourbooks", or one that stands anywhere else, as a shared one does.
set(HOURBOOK_INSTALLATION shared CACHE STRING "Kind of installation: shared (a database that may stand anywhere) or single (in My Hourbooks)")
set_property(CACHE HOURBOOK_INSTALLATION PROPERTY STRINGS single shared)
if(NOT HOURBOOK_INSTALLATION MATCHES "^(single|shared)$")
  message(FATAL_ERROR "HOURBOOK_INSTALLATION is \"${HOURBOOK_INSTALLATION}\"; it has to be single or shared")
endif()

# hourbook_settings_names(TARGET): gives the settings program the name that belongs to the installation, beside its own.
# Call it in the folder that makes the target.
function(hourbook_settings_names target)
  set(single HBPersonalSettingsSingle${CMAKE_EXECUTABLE_SUFFIX})
  set(shared HBPersonalSettings${CMAKE_EXECUTABLE_SUFFIX})
  if(HOURBOOK_INSTALLATION STREQUAL "single")
    set(name ${single})
    set(other ${shared})
  else()
    set(name ${shared})
    set(other ${single})
  endif()
  if(CMAKE_HOST_WIN32)
    set(place copy_if_different $<TARGET_FILE:${target}>)
  else()
    set(place create_symlink $<TARGET_FILE_NAME:${target}>)
  endif()
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E rm -f $<TARGET_FILE_DIR:${target}>/${other}
    COMMAND ${CMAKE_COMMAND} -E ${place} $<TARGET_FILE_DIR:${target}>/${name}
    VERBATIM)
endfunction()
