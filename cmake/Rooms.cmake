# The tree is the architecture: a folder of sources is a room with a target of its own, and what stands in it can include
# headers of that room and of the rooms that it uses, and no others. Rooms use only rooms that were defined before them.
#
# What makes an #include fail that is not allowed: no room is compiled with the source tree as include folder. Each gets a
# folder of its own in the build tree, in which a link of the room's name leads to its sources.

# chat_transfer_include_root(RESULT NAME LINK...): an include folder in which each LINK ("host/base") leads to that place
# of the source tree.
function(chat_transfer_include_root result name)
  set(root "${PROJECT_BINARY_DIR}/rooms/${name}")
  file(REMOVE_RECURSE "${root}")
  foreach(link IN LISTS ARGN)
    get_filename_component(parent "${root}/${link}" DIRECTORY)
    file(MAKE_DIRECTORY "${parent}")
    file(CREATE_LINK "${PROJECT_SOURCE_DIR}/${link}" "${root}/${link}" SYMBOLIC)
  endforeach()
  set(${result} "${root}" PARENT_SCOPE)
endfunction()

# chat_transfer_room(FOLDER TYPE SOURCES source... USES room... LIBRARIES target...): the room FOLDER ("app/base"), as the
# target chat_transfer_app_base. TYPE is STATIC, or OBJECT for a part of a larger library. SOURCES are relative to FOLDER.
function(chat_transfer_room folder type)
  cmake_parse_arguments(room "" "" "SOURCES;USES;LIBRARIES" ${ARGN})
  string(REPLACE "/" "_" name "${folder}")
  set(target "chat_transfer_${name}")
  list(TRANSFORM room_SOURCES PREPEND "${PROJECT_SOURCE_DIR}/${folder}/")
  add_library(${target} ${type} ${room_SOURCES})
  chat_transfer_own_code(${target})
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  chat_transfer_include_root(root "${name}" "${folder}")
  target_include_directories(${target} PUBLIC "$<BUILD_INTERFACE:${root}>")
  foreach(used IN LISTS room_USES)
    string(REPLACE "/" "_" used_target "chat_transfer_${used}")
    if(NOT TARGET ${used_target})
      message(FATAL_ERROR "The room ${folder} uses ${used}, which is not below it.")
    endif()
    target_link_libraries(${target} PUBLIC ${used_target})
  endforeach()
  target_link_libraries(${target} PUBLIC ${room_LIBRARIES})
endfunction()
