# Writes the launcher entry from its template, with one quick action for every window the
# program's --open takes, as the program itself lists them (vantora --list-windows prints
# "NAME<tab>CAPTION" lines). A widget added to the program thus gets its action without anyone
# editing the entry.
#
#   cmake -DPROGRAM=... -DTEMPLATE=... -DOUTPUT=... -DVANTORA_WM_CLASS=... -P launcher_entry.cmake
execute_process(COMMAND "${PROGRAM}" --list-windows
                OUTPUT_VARIABLE _windows
                RESULT_VARIABLE _status)
if(NOT _status EQUAL 0 OR _windows STREQUAL "")
  message(FATAL_ERROR "${PROGRAM} --list-windows did not list the windows (${_status})")
endif()

string(REPLACE "\n" ";" _lines "${_windows}")
set(VANTORA_ACTIONS "")
set(VANTORA_ACTION_GROUPS "")
foreach(_line IN LISTS _lines)
  if(_line STREQUAL "")
    continue()
  endif()
  if(NOT _line MATCHES "^([a-z0-9-]+)\t(.+)$")
    message(FATAL_ERROR "not a window line: '${_line}'")
  endif()
  string(APPEND VANTORA_ACTIONS "${CMAKE_MATCH_1};")
  string(APPEND VANTORA_ACTION_GROUPS
         "\n[Desktop Action ${CMAKE_MATCH_1}]\nName=${CMAKE_MATCH_2}\nExec=vantora --open ${CMAKE_MATCH_1}\n")
endforeach()
configure_file("${TEMPLATE}" "${OUTPUT}" @ONLY)
