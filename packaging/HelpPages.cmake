# Writes the manual page and the shell's completion from what the program says of itself, so that
# its options are written down once.
#
# cmake -DPROGRAM=… -DVERSION=… -DSOURCE=… -DDESTINATION=… -P HelpPages.cmake
execute_process(COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C "${PROGRAM}" --help
  OUTPUT_VARIABLE help COMMAND_ERROR_IS_FATAL ANY)

function(escape_for_manual variable text)
  string(REPLACE "\\" "\\e" text "${text}")
  string(REPLACE "-" "\\-" text "${text}")
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()

set(manual)
set(options)
# Line by line, and not as a list: brackets and semicolons mean something there.
while(NOT help STREQUAL "")
  string(FIND "${help}" "\n" end)
  string(SUBSTRING "${help}" 0 ${end} line)
  math(EXPR end "${end} + 1")
  string(SUBSTRING "${help}" ${end} -1 help)
  if(line MATCHES "^  (--[^ ]+( [^ ]+)*)( +(.*))?$")
    escape_for_manual(option "${CMAKE_MATCH_1}")
    escape_for_manual(text "${CMAKE_MATCH_4}")
    string(APPEND manual ".TP\n.B ${option}\n")
    if(NOT text STREQUAL "")
      string(APPEND manual "${text}\n")
    endif()
    string(REGEX MATCH "^--[a-z-]+" name "${CMAKE_MATCH_1}")
    string(APPEND options " ${name}")
  elseif(line MATCHES "^   +(.*)$")
    escape_for_manual(text "${CMAKE_MATCH_1}")
    string(APPEND manual "${text}\n")
  elseif(line MATCHES "^([A-Z].*):$")
    string(APPEND manual ".SS ${CMAKE_MATCH_1}\n")
  endif()
endwhile()
if(options STREQUAL "")
  message(FATAL_ERROR "${PROGRAM} --help lists no options")
endif()

string(STRIP "${options}" OPTIONS)
configure_file("${SOURCE}/quorvel.bash.in" "${DESTINATION}/quorvel.bash" @ONLY)
set(OPTIONS "${manual}")
configure_file("${SOURCE}/quorvel.1.in" "${DESTINATION}/quorvel.1" @ONLY)
